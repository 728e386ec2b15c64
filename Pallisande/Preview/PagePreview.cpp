#include "Pallisande/Preview/PagePreview.h"

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/ComboBox.h"
#include "Pallisande/Widgets/Label.h"
#include "Pallisande/Widgets/Painting.h"

#include <QBoxLayout>
#include <QEvent>
#include <QPointer>
#include <QScrollArea>
#include <QScrollBar>
#include <QStackedWidget>
#include <QTimer>

namespace Pallisande {

namespace {

constexpr std::chrono::milliseconds editPause(250); // After the last edit.
constexpr int resizePause = 120; // Milliseconds.
constexpr int margin = Space::large; // Around the page; its shadow is in it.

} // namespace

// The page on its desk.
class PagePreview::Paper : public QWidget {
public:
    explicit Paper(PagePreview& preview)
        : m_preview(preview)
    {
        setAccessibleName(QStringLiteral("Page"));
    }

    void resizeToPage()
    {
        const auto size = m_preview.m_drawn.size.toSize() + QSize(2 * margin, 2 * margin);
        setMinimumSize(m_preview.m_zoom > 0 ? size : QSize(0, 0));
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        const auto& drawn = m_preview.m_drawn;
        if (drawn.image.isNull())
            return;
        const auto& theme = Theme::of(this);
        auto size = drawn.size;
        if (m_preview.m_zoom == 0) // Until it is drawn anew, the old page takes the new room.
            size.scale(QSizeF(width() - 2 * margin, height() - 2 * margin), Qt::KeepAspectRatio);
        const QRectF page(QPointF(std::round((width() - size.width()) / 2),
                              m_preview.m_zoom == 0 ? margin : std::round((height() - size.height()) / 2)),
            size);
        QPainter painter(this);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        drawShadow(painter, page, 0, theme.colours.shadow);
        painter.drawImage(page, drawn.image);
        if (m_preview.m_mark == Mark::draft)
            drawMark(painter, page);
    }

private:
    // Along the left margin, where nothing is printed; it isn't part of the document.
    void drawMark(QPainter& painter, const QRectF& page) const
    {
        auto font = Theme::of(this).font(TextStyle::bodyStrong);
        font.setPixelSize(std::max(6, static_cast<int>(page.width() * 0.032)));
        font.setLetterSpacing(QFont::PercentageSpacing, 160);
        painter.save();
        painter.setFont(font);
        painter.setPen(Colours::light().tone(Tone::grey).text.lighter(150)); // The paper is always white.
        painter.translate(page.left() + page.width() * 0.045, page.center().y());
        painter.rotate(-90);
        painter.drawText(QRectF(-page.height() / 2, -page.width() * 0.04, page.height(), page.width() * 0.08),
            Qt::AlignCenter, QStringLiteral("DRAFT"));
        painter.restore();
    }

    PagePreview& m_preview;
};

PagePreview::PagePreview(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_stack(new QStackedWidget(this))
    , m_scroll(new QScrollArea(this))
    , m_paper(new Paper(*this))
    , m_bar(new QWidget(this))
    , m_resized(new QTimer(this))
{
    m_scroll->setWidget(m_paper);
    m_scroll->setWidgetResizable(true);
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setObjectName(QStringLiteral("previewPage"));
    m_scroll->setAccessibleName(QStringLiteral("Preview"));
    m_scroll->setFocusPolicy(Qt::StrongFocus);
    m_scroll->viewport()->setAutoFillBackground(false);
    m_scroll->viewport()->installEventFilter(this);
    m_paper->setAutoFillBackground(false);

    auto* message = new QWidget(this);
    auto* middle = new QVBoxLayout(message);
    middle->setContentsMargins(Space::group, Space::group, Space::group, Space::group);
    middle->setSpacing(Space::medium);
    m_sentence = makeSentence({}, message, TextStyle::body, Ink::muted);
    m_sentence->setAlignment(Qt::AlignHCenter);
    m_sentence->setObjectName(QStringLiteral("previewSentence"));
    m_act = makeButton({}, ButtonKind::plain, message);
    middle->addStretch();
    middle->addWidget(m_sentence);
    middle->addWidget(m_act, 0, Qt::AlignHCenter);
    middle->addStretch();
    m_stack->addWidget(m_scroll);
    m_stack->addWidget(message);

    m_previous = makeIconButton(Icon::chevronLeft, QStringLiteral("Previous Page"), m_bar);
    m_next = makeIconButton(Icon::chevronRight, QStringLiteral("Next Page"), m_bar);
    m_place = new Label(m_bar, TextStyle::small, Ink::muted);
    m_place->setObjectName(QStringLiteral("previewPlace"));
    m_scale = new ComboBox(m_bar);
    m_scale->setObjectName(QStringLiteral("previewZoom"));
    m_scale->setAccessibleName(QStringLiteral("Zoom"));
    m_scale->addItem(QStringLiteral("Fit"), 0);
    m_scale->addItem(QStringLiteral("100%"), 100);
    m_scale->addItem(QStringLiteral("200%"), 200);
    auto* bar = new QHBoxLayout(m_bar);
    bar->setContentsMargins(Space::medium, Space::small, Space::medium, Space::small);
    bar->setSpacing(Space::tiny);
    bar->addWidget(m_previous);
    bar->addWidget(m_place);
    bar->addWidget(m_next);
    bar->addStretch();
    bar->addWidget(m_scale);

    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(0);
    box->addWidget(m_stack, 1);
    box->addWidget(m_bar);

    m_resized->setSingleShot(true);
    m_resized->setInterval(resizePause);
    connect(m_resized, &QTimer::timeout, this, [this] {
        if (!m_isWaiting)
            ask();
    });
    connect(m_previous, &QToolButton::clicked, this, [this] { setPage(page() - 1); });
    connect(m_next, &QToolButton::clicked, this, [this] { setPage(page() + 1); });
    connect(m_scale, &QComboBox::activated, this, [this] { setZoom(m_scale->currentData().toInt()); });
    connect(m_act, &QPushButton::clicked, this, &PagePreview::acted);
    refresh();
}

PagePreview::~PagePreview() = default;

QSize PagePreview::sizeHint() const { return { Theme::of(this).scaled(300), 420 }; }

QSize PagePreview::minimumSizeHint() const { return { m_bar->minimumSizeHint().width(), 160 }; }

QWidget* PagePreview::pane() const { return m_scroll; }

void PagePreview::showDocument(const std::string& key, Tamberlin::PrintedDocument document, Mark mark)
{
    const bool isAnother = key != m_key;
    if (const auto* shown = std::get_if<Tamberlin::PrintedDocument>(&m_source);
        shown && !isAnother && *shown == document && mark == m_mark)
        return;
    m_source = std::move(document);
    m_mark = mark;
    m_isDrawn = false;
    if (isAnother) {
        m_key = key;
        m_wanted = 0;
        m_drawn = {};
        stopWaiting();
        ask();
    } else {
        m_isWaiting = true;
        m_later = m_model.services().after(editPause, [this] {
            m_isWaiting = false;
            ask();
        });
    }
}

void PagePreview::showStored(const std::filesystem::path& pdf)
{
    stopWaiting();
    m_source = pdf;
    m_mark = Mark::none;
    m_drawn = {};
    m_wanted = 0;
    m_key = pdf.string();
    m_isDrawn = false;
    ask();
}

void PagePreview::showSentence(const QString& sentence, const QString& button)
{
    clear();
    m_sentence->setText(sentence);
    m_act->setText(button);
    m_act->setVisible(!button.isEmpty());
    m_stack->setCurrentIndex(1);
}

void PagePreview::clear()
{
    stopWaiting();
    m_source = {};
    m_key.clear();
    m_drawn = {};
    m_isDrawn = false;
    m_sentence->clear();
    m_act->hide();
    refresh();
}

void PagePreview::stopWaiting()
{
    m_isWaiting = false;
    m_later.reset();
}

void PagePreview::setPage(int page)
{
    m_wanted = std::clamp(page, 0, std::max(0, pages() - 1));
    ask();
    m_scroll->verticalScrollBar()->setValue(0);
}

void PagePreview::setZoom(int percent)
{
    if (std::exchange(m_zoom, percent) == percent)
        return;
    m_scale->setCurrentIndex(m_scale->findData(percent));
    ask();
    emit zoomChanged();
}

void PagePreview::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (!m_isDrawn && !m_isWaiting)
        ask();
}

bool PagePreview::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize && m_zoom == 0 && !std::holds_alternative<std::monostate>(m_source)) {
        if (m_drawn.image.isNull())
            ask();
        else
            m_resized->start();
    }
    return QWidget::eventFilter(watched, event);
}

void PagePreview::ask()
{
    if (std::holds_alternative<std::monostate>(m_source) || !isVisible())
        return;
    if (m_isDrawing) { // One at a time; what was wanted last comes next.
        m_isOutdated = true;
        return;
    }
    m_isDrawing = true;
    m_isOutdated = false;
    struct Work {
        PageSource source;
        int page;
        PageScale scale;
        DrawnPage drawn;
    };
    const auto room = m_scroll->viewport()->size() - QSize(2 * margin, 2 * margin);
    const auto work = std::make_shared<Work>(
        Work { m_source, m_wanted, { room.expandedTo({ 40, 40 }), m_zoom, devicePixelRatioF() }, {} });
    m_model.inBackground([work] { work->drawn = drawnPage(work->source, work->page, work->scale); },
        [self = QPointer(this), work] {
            if (!self)
                return;
            self->m_isDrawing = false;
            if (work->source == self->m_source)
                self->take(work->drawn);
            if (self->m_isOutdated || work->source != self->m_source)
                self->ask();
        });
}

void PagePreview::take(const DrawnPage& drawn)
{
    m_drawn = drawn;
    m_wanted = drawn.page;
    m_isDrawn = true;
    refresh();
    emit this->drawn();
}

void PagePreview::refresh()
{
    const bool hasFailed = !m_drawn.failure.empty();
    if (hasFailed)
        m_sentence->setText(QString::fromStdString(m_drawn.failure));
    m_stack->setCurrentIndex(hasFailed ? 1 : 0);
    m_bar->setVisible(!std::holds_alternative<std::monostate>(m_source) && !hasFailed);
    m_place->setText(
        m_drawn.pages > 0 ? QStringLiteral("%1 of %2").arg(m_drawn.page + 1).arg(m_drawn.pages) : QString());
    m_previous->setEnabled(m_drawn.page > 0);
    m_next->setEnabled(m_drawn.page + 1 < m_drawn.pages);
    m_paper->setAccessibleDescription(
        QStringLiteral("Page %1 of %2").arg(m_drawn.page + 1).arg(m_drawn.pages));
    m_paper->resizeToPage();
}

} // namespace Pallisande
