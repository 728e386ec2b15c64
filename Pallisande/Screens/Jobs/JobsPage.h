#pragma once

#include "Pallisande/Model/JobSection.h"
#include "Pallisande/Screens/ListDetailPage.h"

namespace Pallisande {

class ClientBox;
class ComboBox;
class JobDetail;

class JobsPage : public ListDetailPage {
    Q_OBJECT

public:
    JobsPage(const ScreenServices& services, QWidget* parent);

    QString title() const override { return QStringLiteral("Jobs"); }
    std::vector<QWidget*> filters() const override;
    QString searchHint() const override { return QStringLiteral("Search jobs"); }
    std::string countText() const override { return model().jobs().countText(); }
    bool carryOut(Command command) override;

protected:
    void showRecord(const Base::Uuid& id) override;
    bool hasRecords() const override { return !model().library().jobs.empty(); }

private:
    void restore(); // Filters and sort of the last time.
    void takeFilters(); // Those of the model, which clears them to show a record.
    void showEmptyPage();

    ComboBox* m_status;
    ClientBox* m_client;
    JobDetail* m_detail;
    EmptyPage* m_empty;
    QPushButton *m_newClient, *m_newJob;
    std::optional<Base::Uuid> m_added; // By the sheet that is about to close.
};

} // namespace Pallisande
