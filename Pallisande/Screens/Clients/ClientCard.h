#pragma once

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Widgets/Card.h"
#include "Pallisande/Widgets/FormLayout.h"
#include "Pallisande/Widgets/LineField.h"
#include "Pallisande/Widgets/TextArea.h"

#include <functional>

namespace Pallisande {

// A part of a client's page, which shows one client at a time and takes it from the model whenever it is
// shown again.
class ClientCard : public Card {
    Q_OBJECT

public:
    ClientCard(AppModel& model, const QString& heading, QWidget* parent);

    // Another client: what is typed and not committed goes.
    void show(const Base::Uuid& id);

protected:
    virtual void refresh(const Client& client) = 0;

    AppModel& model() const { return m_model; }
    const Base::Uuid& id() const { return m_id; }
    const Client* client() const { return m_model.client(m_id); }

    // One step named `step` ("Change Rate"). Entries into the same field that follow each other are one;
    // without a field each is a step of its own.
    bool edit(const QWidget* field, const std::string& step, const std::function<void(Client&)>& change);

    // Rows that show a text of the client and hand it over.
    TextField* addText(FormLayout& form, const QString& label, const std::string& step,
        std::string Client::*member, FormLayout::Width width = FormLayout::Width::stretching);
    TextArea* addArea(
        FormLayout& form, const QString& label, const std::string& step, std::string Client::*member);

    void bind(TextArea* area, const std::string& step, std::string Client::*member);

private:
    AppModel& m_model;
    Base::Uuid m_id;
    const QWidget* m_lastField = nullptr;
    std::vector<std::function<void(const Client&)>> m_texts; // Show what addText and addArea bound.
};

// A step's name and how one field of a client is changed.
using ClientEdit = std::function<bool(
    const QWidget* field, const std::string& step, const std::function<void(Client&)>& change)>;

} // namespace Pallisande
