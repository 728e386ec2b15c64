#pragma once

#include "Base/Uuid.h"
#include "Pallisande/Screens/SectionPage.h"

#include <optional>

class QSplitter;

namespace Pallisande {

class CreditsCard;
class DetailPage;
class InvoiceHeader;
class LinesCard;
class PagePreview;
class PartyCard;
class PaymentsCard;
class RateCard;
class TermsCard;

// One document: its header, its cards, and at their right how it is printed. Where there isn't room for both,
// the preview takes the place of the cards while it is asked for.
class InvoiceDetail : public QWidget {
    Q_OBJECT

public:
    InvoiceDetail(const ScreenServices& services, QWidget* parent);

    void show(const Base::Uuid& id);
    void refresh(const LibraryChanges& changes);
    void refreshAll();
    void togglePreview();
    bool showsPreview() const;

    LinesCard* lines() const { return m_lines; }
    DetailPage* page() const { return m_page; }
    PagePreview* preview() const { return m_preview; }

signals:
    void listWanted();

protected:
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool concerns(const LibraryChanges& changes) const;
    void refreshPreview();
    void placePreview();
    bool isNarrow() const;

    ScreenServices m_services;
    std::optional<Base::Uuid> m_id;
    InvoiceHeader* m_header;
    QSplitter* m_splitter;
    DetailPage* m_page;
    LinesCard* m_lines;
    PaymentsCard* m_payments;
    RateCard* m_rate;
    CreditsCard* m_credits;
    TermsCard* m_terms;
    PartyCard* m_party;
    PagePreview* m_preview;
    std::optional<Base::Uuid> m_stored; // The issued document whose file is on show.
    bool m_wantsPreview = true, m_wantsItOver = false;
};

} // namespace Pallisande
