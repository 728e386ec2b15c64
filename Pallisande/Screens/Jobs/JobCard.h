#pragma once

#include "Pallisande/Model/JobSection.h"
#include "Pallisande/Screens/SectionPage.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/Card.h"
#include "Pallisande/Widgets/LineField.h"

namespace Pallisande {

// A part of a job's page, which shows one job at a time and asks the model for it whenever it is refreshed.
class JobPart {
public:
    explicit JobPart(const ScreenServices& services)
        : m_services(services)
    {
    }
    virtual ~JobPart() = default;

    // Another job: what is typed and not committed goes, then the part is refreshed.
    void showJob(const Base::Uuid& id);
    virtual void refresh() = 0; // The job is there.

protected:
    virtual void revert() { }

    AppModel& model() const { return m_services.model; }
    Commands& commands() const { return m_services.commands; }
    ViewState& view() const { return m_services.view; }
    const Base::Uuid& id() const { return m_id; }
    const Job* job() const { return m_services.model.job(m_id); }
    const Client* client() const;
    QString readOnlyReason() const; // Empty: the library can be changed.
    QString lockReason() const; // Empty: what the price is made of can be changed.

    // Hands a committed entry to the model. What it refuses stands under the field.
    bool edit(LineField& field, const std::string& name, const std::function<void(Job&)>& change);

    const ScreenServices& services() const { return m_services; }

private:
    ScreenServices m_services;
    Base::Uuid m_id;
};

class JobCard : public Card, public JobPart {
    Q_OBJECT

public:
    JobCard(const QString& heading, const ScreenServices& services, QWidget* parent)
        : Card(heading, parent)
        , JobPart(services)
    {
    }
};

// Locked entries can be read and copied, and say why they can't be changed.
void setLocked(QLineEdit* field, const QString& reason);

// A button that does what the action does, whenever it can be done, and says why when not.
QPushButton* actionButton(QAction* action, const QString& text, ButtonKind kind, QWidget* parent);

} // namespace Pallisande
