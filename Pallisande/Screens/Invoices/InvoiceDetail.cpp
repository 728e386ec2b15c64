#include "Pallisande/Screens/Invoices/InvoiceDetail.h"

#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Preview/PagePreview.h"
#include "Pallisande/Screens/DetailPage.h"
#include "Pallisande/Screens/Invoices/InvoiceHeader.h"
#include "Pallisande/Screens/Invoices/LinesCard.h"
#include "Pallisande/Screens/Invoices/PaymentsCard.h"
#include "Pallisande/Screens/Invoices/RelatedCards.h"
#include "Pallisande/Screens/Invoices/TermsCard.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Theme.h"

#include <QAction>
#include <QKeyEvent>
#include <QPointer>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>

namespace Pallisande {

namespace {

constexpr int narrowBelow = 600; // Of the detail: cards and preview don't stand side by side.
constexpr int usualPreview = 270, leastCards = 320;
constexpr const char* previewFlag = "invoices.preview";
constexpr const char* previewWidth = "invoices.previewWidth";

bool names(const std::vector<RecordID>& records, const RecordID& wanted)
{
    return std::find(records.begin(), records.end(), wanted) != records.end();
}

} // namespace

InvoiceDetail::InvoiceDetail(const ScreenServices& services, QWidget* parent)
    : QWidget(parent)
    , m_services(services)
    , m_header(new InvoiceHeader(services, this))
    , m_splitter(new QSplitter(Qt::Horizontal, this))
    , m_page(new DetailPage(m_splitter))
    , m_preview(new PagePreview(services.model, m_splitter))
    , m_wantsPreview(services.view.flag(previewFlag, true))
{
    auto& model = services.model;
    m_lines = new LinesCard(model, m_page->widget());
    m_payments = new PaymentsCard(model, m_page->widget());
    m_rate = new RateCard(model, m_page->widget());
    m_credits = new CreditsCard(model, m_page->widget());
    m_terms = new TermsCard(model, m_page->widget());
    m_party = new PartyCard(model, m_page->widget());
    for (QWidget* card : { static_cast<QWidget*>(m_lines), static_cast<QWidget*>(m_payments),
             static_cast<QWidget*>(m_rate), static_cast<QWidget*>(m_credits), static_cast<QWidget*>(m_terms),
             static_cast<QWidget*>(m_party) })
        m_page->column()->addWidget(card);
    m_page->setMinimumWidth(leastCards);
    m_page->widget()->layout()->setContentsMargins(
        Space::page, Space::tiny, Space::large, Space::page); // The preview has a margin of its own.

    m_splitter->setChildrenCollapsible(false);
    m_splitter->setHandleWidth(1);
    m_splitter->setStretchFactor(0, 1);
    m_splitter->setStretchFactor(1, 0);
    const auto kept = services.view.text(previewWidth);
    m_splitter->setSizes({ 1000, kept ? std::max(160, std::atoi(kept->c_str())) : usualPreview });
    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(Space::large);
    box->addWidget(m_header);
    box->addWidget(m_splitter, 1);

    connect(m_splitter, &QSplitter::splitterMoved, this,
        [this] { m_services.view.setText(previewWidth, std::to_string(m_splitter->sizes().back())); });
    connect(m_page, &DetailPage::listWanted, this, &InvoiceDetail::listWanted);
    connect(m_preview, &PagePreview::acted, this, [this] {
        if (m_id)
            m_services.model.invoices().openStoredPDF(*m_id);
    });
    placePreview();
}

void InvoiceDetail::show(const Base::Uuid& id)
{
    if (m_id != id)
        m_stored.reset();
    m_id = id;
    refreshAll();
}

void InvoiceDetail::refreshAll()
{
    const auto* const invoice = m_id ? m_services.model.invoice(*m_id) : nullptr;
    if (!invoice)
        return;
    m_header->show(*m_id);
    m_lines->show(*m_id);
    m_payments->show(*m_id);
    m_rate->show(*m_id);
    m_credits->show(*m_id);
    m_terms->show(*m_id);
    m_party->show(*m_id);
    refreshPreview();
}

void InvoiceDetail::refresh(const LibraryChanges& changes)
{
    if (m_id && concerns(changes))
        refreshAll();
}

// Its own record, its client, its jobs, what it credits or is credited by, and what is printed of the user.
bool InvoiceDetail::concerns(const LibraryChanges& changes) const
{
    const auto* const invoice = m_services.model.invoice(*m_id);
    if (!invoice)
        return false;
    if (changes.everything || changes.profile || changes.rates || changes.concerns(RecordKind::invoice))
        return true;
    if (names(changes.changed, { RecordKind::client, invoice->clientID }))
        return true;
    return !invoice->isIssued() && changes.concerns(RecordKind::job);
}

void InvoiceDetail::refreshPreview()
{
    const auto* const invoice = m_id ? m_services.model.invoice(*m_id) : nullptr;
    if (!invoice || !showsPreview())
        return;
    auto& invoices = m_services.model.invoices();
    if (!invoice->isIssued()) {
        m_stored.reset();
        m_preview->showDocument(m_id->toString(), invoices.document(*invoice), PagePreview::Mark::draft);
        return;
    }
    if (m_stored == m_id)
        return;
    m_stored = m_id;
    m_preview->clear();
    invoices.examineStoredPDF(
        *m_id, [self = QPointer(this), id = *m_id](const InvoiceSection::StoredPDF& stored) {
            if (!self || self->m_stored != id)
                return;
            if (!stored.failure.empty())
                self->m_preview->showSentence(qt(stored.failure));
            else if (stored.isAsIssued && canDrawStoredPDFs())
                self->m_preview->showStored(stored.path);
            else
                self->m_preview->showSentence(
                    QStringLiteral("The stored PDF opens in your PDF viewer."), QStringLiteral("Open PDF"));
        });
}

bool InvoiceDetail::isNarrow() const { return width() < Theme::of(this).scaled(narrowBelow); }

bool InvoiceDetail::showsPreview() const { return isNarrow() ? m_wantsItOver : m_wantsPreview; }

void InvoiceDetail::togglePreview()
{
    if (isNarrow()) {
        m_wantsItOver = !m_wantsItOver;
    } else {
        m_wantsPreview = !m_wantsPreview;
        m_services.view.setFlag(previewFlag, m_wantsPreview);
    }
    placePreview();
}

void InvoiceDetail::placePreview()
{
    const bool isOver = isNarrow() && m_wantsItOver;
    m_preview->setVisible(showsPreview());
    m_page->setVisible(!isOver);
    const int right = showsPreview() ? Space::large : Space::page;
    m_page->widget()->layout()->setContentsMargins(Space::page, Space::tiny, right, Space::page);
    if (isVisible())
        m_services.commands.action(Command::inspector)->setChecked(showsPreview());
    refreshPreview();
}

void InvoiceDetail::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    const bool isOver = isNarrow() && m_wantsItOver;
    if (m_preview->isHidden() == showsPreview() || m_page->isHidden() != isOver)
        placePreview();
}

void InvoiceDetail::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    placePreview(); // Other sections have an inspector of their own.
}

void InvoiceDetail::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        emit listWanted();
    else
        QWidget::keyPressEvent(event);
}

} // namespace Pallisande
