#include "Pallisande/Screens/Jobs/JobDetail.h"

#include "Pallisande/Screens/Jobs/AnalysesCard.h"
#include "Pallisande/Screens/Jobs/ExtraLinesCard.h"
#include "Pallisande/Screens/Jobs/JobDetailsCard.h"
#include "Pallisande/Screens/Jobs/JobDrops.h"
#include "Pallisande/Screens/Jobs/JobHeader.h"
#include "Pallisande/Screens/Jobs/PriceCard.h"
#include "Pallisande/Screens/RecordListView.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Label.h"
#include "Pallisande/Widgets/Painting.h"
#include "Pallisande/Widgets/ReadingOrder.h"

#include <QDragEnterEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QVBoxLayout>

#include <algorithm>

namespace Pallisande {

// Over the whole page while something hovers that it would take: an outline and what a drop would do.
class DropSign : public QWidget {
public:
    explicit DropSign(QWidget* parent)
        : QWidget(parent)
    {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        hide();
    }
    QString sentence;

protected:
    void paintEvent(QPaintEvent*) override
    {
        const auto& theme = Theme::of(this);
        QPainter painter(this);
        auto tint = theme.colours.accent;
        tint.setAlphaF(0.08F);
        drawSurface(
            painter, QRectF(rect()).adjusted(2, 2, -2, -2), Radius::card, tint, theme.colours.accent, 2);
        painter.setFont(theme.font(TextStyle::bodyStrong));
        const auto metrics = painter.fontMetrics();
        QRectF pill(0, 0,
            std::min(width() - 2 * Space::page, metrics.horizontalAdvance(sentence) + 2 * Space::group),
            metrics.height() + 2 * Space::medium);
        pill.moveCenter(QRectF(rect()).center());
        drawSurface(painter, pill, Radius::card, theme.colours.raised, theme.colours.accent, 1);
        painter.setPen(theme.colours.text);
        drawLine(painter, pill.adjusted(Space::medium, 0, -Space::medium, 0), sentence, Qt::AlignCenter);
    }
};

JobDetail::JobDetail(const ScreenServices& services, QWidget* parent)
    : DetailPage(parent)
    , m_services(services)
    , m_strip(new Card(this))
    , m_selected(new Label(m_strip, TextStyle::bodyStrong))
    , m_analyses(new AnalysesCard(services, this))
    , m_extras(new ExtraLinesCard(services, this))
    , m_dropSign(new DropSign(viewport()))
{
    setObjectName(QStringLiteral("jobDetail"));
    setAccessibleName(QStringLiteral("Job"));
    setAcceptDrops(true);
    m_selected->setObjectName(QStringLiteral("selectedJobs"));
    m_selected->setWordWrap(true);
    m_strip->content()->addWidget(m_selected);
    m_strip->hide();
    auto* header = new JobHeader(services, this);
    auto* price = new PriceCard(services, this);
    auto* details = new JobDetailsCard(services, this);
    auto* notes = new JobNotesCard(services, this);
    column()->addWidget(m_strip);
    for (QWidget* part :
        std::initializer_list<QWidget*> { header, price, m_analyses, m_extras, details, notes })
        column()->addWidget(part);
    m_parts = { header, price, m_analyses, m_extras, details, notes };
    connect(price, &PriceCard::mismatchesWanted, m_analyses, &AnalysesCard::showMismatches);
    for (auto* field : findChildren<QLineEdit*>())
        field->setAcceptDrops(false); // A file isn't its path.
    for (auto* field : findChildren<QPlainTextEdit*>())
        field->setAcceptDrops(false);

    connect(&services.model, &AppModel::libraryChanged, this, [this](const LibraryChanges& changes) {
        if (isConcerned(changes))
            refresh();
        showStrip();
    });
    connect(&services.model, &AppModel::stateChanged, this, &JobDetail::refresh);
    connect(&services.model, &AppModel::timePassed, this, &JobDetail::refresh);
}

void JobDetail::showJob(const Base::Uuid& id)
{
    const bool isAnother = id != m_id;
    m_id = id;
    m_isOutdated = false;
    for (auto* part : m_parts)
        part->showJob(id);
    orderByReading(widget());
    showStrip();
    if (isAnother)
        ensureVisible(0, 0);
}

void JobDetail::addExtraLine() { m_extras->addLine(); }

void JobDetail::focusImport()
{
    findChild<QPushButton*>(QStringLiteral("importAnalysis"))->setFocus(Qt::TabFocusReason);
}

bool JobDetail::isConcerned(const LibraryChanges& changes) const
{
    const auto* const job = m_services.model.job(m_id);
    if (changes.everything || !job)
        return changes.everything;
    for (const auto* list : { &changes.added, &changes.changed, &changes.removed }) {
        for (const auto& [kind, id] : *list) {
            if (id == m_id || id == job->clientID || (job->invoiceID && id == *job->invoiceID))
                return true;
        }
    }
    return false;
}

void JobDetail::refresh()
{
    m_isOutdated = !isVisible();
    if (m_isOutdated || !m_services.model.job(m_id))
        return;
    for (auto* part : m_parts)
        part->refresh();
    orderByReading(widget()); // Lines and analyses come and go.
}

void JobDetail::showStrip()
{
    const auto ids = m_services.commands.selected(AppSection::jobs);
    m_strip->setVisible(ids.size() > 1);
    if (ids.size() > 1)
        m_selected->setText(qt(m_services.model.jobs().selectionText(ids)));
}

void JobDetail::showEvent(QShowEvent* event)
{
    DetailPage::showEvent(event);
    if (m_isOutdated)
        refresh();
}

void JobDetail::resizeEvent(QResizeEvent* event)
{
    DetailPage::resizeEvent(event);
    m_dropSign->resize(viewport()->size());
}

void JobDetail::dragEnterEvent(QDragEnterEvent* event)
{
    const auto files = filesOf(event->mimeData());
    if (!JobDrops::takes(m_services.model, files, m_id))
        return event->ignore();
    m_dropSign->sentence = JobDrops::invitation(m_services.model, files, m_id);
    m_dropSign->resize(viewport()->size());
    m_dropSign->raise();
    m_dropSign->show();
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void JobDetail::dragMoveEvent(QDragMoveEvent* event)
{
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void JobDetail::dragLeaveEvent(QDragLeaveEvent*) { m_dropSign->hide(); }

void JobDetail::dropEvent(QDropEvent* event)
{
    m_dropSign->hide();
    event->setDropAction(Qt::CopyAction);
    event->accept();
    JobDrops::drop(m_services.model, this, filesOf(event->mimeData()), m_id);
}

} // namespace Pallisande
