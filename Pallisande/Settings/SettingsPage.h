#pragma once

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Widgets/Card.h"
#include "Pallisande/Widgets/FormLayout.h"
#include "Pallisande/Widgets/LineField.h"
#include "Pallisande/Widgets/TextArea.h"

#include <QScrollArea>

#include <functional>

namespace Pallisande {

// One page of the settings: a column of cards that scrolls and follows the model.
class SettingsPage : public QScrollArea {
    Q_OBJECT

public:
    SettingsPage(AppModel& model, QWidget* parent);

    void refresh();

protected:
    virtual void show(const Profile& profile) = 0;

    AppModel& model() const { return m_model; }
    Card* addCard(const QString& heading, const QString& caption = {});

    // Entries into the same field that follow each other are one step; without a field each is its own.
    bool edit(const QWidget* field, const std::function<void(Profile&)>& change);
    // Rows that show a text of the profile and hand it over.
    using Text = std::function<std::string&(Profile&)>;
    TextField* addText(FormLayout& form, const QString& label, Text text);
    TextArea* addArea(FormLayout& form, const QString& label, Text text);

private:
    AppModel& m_model;
    QVBoxLayout* m_column;
    const QWidget* m_lastField = nullptr;
    std::vector<std::function<void(Profile&)>> m_texts;
};

// Why the model refused, to be said beside its cause instead of in the banner.
QString takeProblem(AppModel& model);

} // namespace Pallisande
