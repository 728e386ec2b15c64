#pragma once

#include "Pallisande/Screens/ListDetailPage.h"

#include <QTemporaryDir>

#include <memory>

class QPushButton;

namespace Pallisande {

class ClientBox;
class ComboBox;
class InvoiceDetail;
class NumberingFoot;

// The invoices and credit notes.
class InvoicesPage : public ListDetailPage {
    Q_OBJECT

public:
    InvoicesPage(const ScreenServices& services, QWidget* parent);

    QString title() const override { return QStringLiteral("Invoices"); }
    std::vector<QWidget*> filters() const override;
    QString searchHint() const override { return QStringLiteral("Search invoices"); }
    std::string countText() const override;
    std::vector<QWidget*> panes() const override;
    bool carryOut(Command command) override;

    // What goes along with a drag, so that nobody moves the original out of the library; empty: nothing.
    std::filesystem::path copyOfPDF(const Base::Uuid& id);

protected:
    void showRecord(const Base::Uuid& id) override;
    bool hasRecords() const override;
    void showEvent(QShowEvent* event) override;

private:
    void makeFilters();
    void refreshFilters();
    void refreshYears();
    void payInFull();
    void copyReminder();

    InvoiceDetail* m_detail;
    NumberingFoot* m_foot;
    ComboBox *m_status, *m_year;
    ClientBox* m_client;
    QPushButton* m_new;
    std::unique_ptr<QTemporaryDir> m_dragged; // Copies of stored PDFs that went along with a drag.
};

} // namespace Pallisande
