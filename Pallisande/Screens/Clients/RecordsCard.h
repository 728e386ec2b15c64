#pragma once

#include "Pallisande/Screens/Clients/ClientCard.h"
#include "Pallisande/Screens/Clients/LinkRow.h"

namespace Pallisande {

// The last jobs and invoices of the client, and what is still to be paid.
class RecordsCard : public ClientCard {
    Q_OBJECT

public:
    RecordsCard(AppModel& model, QWidget* parent);

protected:
    void refresh(const Client& client) override;

private:
    struct Links {
        AppSection section;
        Label *heading, *empty;
        QVBoxLayout* column;
        std::vector<LinkRow*> rows;
        std::vector<Base::Uuid> ids;
    };

    void add(Links& links, const QString& heading, const QString& empty);
    void show(Links& links, std::vector<Base::Uuid> ids, std::vector<LinkRow::Content> contents);

    Label* m_outstanding;
    Links m_jobs { .section = AppSection::jobs }, m_invoices { .section = AppSection::invoices };
};

} // namespace Pallisande
