#pragma once

#include "Pallisande/Screens/ListDetailPage.h"

class QPushButton;

namespace Pallisande {

class ClientCard;
class ClientHeader;
class ComboBox;
class ContactCard;

class ClientsPage : public ListDetailPage {
    Q_OBJECT

public:
    ClientsPage(const ScreenServices& services, QWidget* parent);

    QString title() const override;
    std::vector<QWidget*> filters() const override;
    QString searchHint() const override;
    std::string countText() const override;
    bool carryOut(Command command) override;

protected:
    void showRecord(const Base::Uuid& id) override;
    bool hasRecords() const override;
    void showEvent(QShowEvent* event) override;

private:
    void addCards();
    void addFoot();
    void refreshFoot();
    void refreshRecord(); // What is on show may have changed.
    void libraryChanged(const LibraryChanges& changes);

    DetailPage* m_page;
    ClientHeader* m_header;
    ContactCard* m_contact;
    std::vector<ClientCard*> m_cards;
    ComboBox* m_sort;
    QWidget* m_foot;
    QPushButton* m_archived;
};

} // namespace Pallisande
