#include "Pallisande/Widgets/SheetDialog.h"

#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/Label.h"
#include "Pallisande/Widgets/LineField.h"
#include "Pallisande/Widgets/Painting.h"

#include <QApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QScreen>
#include <QScrollArea>

#include <algorithm>

namespace Pallisande {

// Asks for as much height as its content takes, so that the sheet scrolls only where the screen is too small.
class SheetScroll : public QScrollArea {
public:
    using QScrollArea::QScrollArea;

    QSize sizeHint() const override
    {
        const int inner = width() - 2 * Space::group;
        const auto natural = widget()->sizeHint();
        return { natural.width(),
            widget()->hasHeightForWidth() && inner > 0 ? widget()->heightForWidth(inner + 2 * Space::group)
                                                       : natural.height() };
    }
    QSize minimumSizeHint() const override { return { 0, std::min(sizeHint().height(), 80) }; }
};

SheetDialog::SheetDialog(const QString& title, const QString& sentence, Width width, QWidget* parent)
    : QDialog(parent)
    , m_scroll(new SheetScroll(this))
    , m_title(new Label(title, this, TextStyle::heading))
    , m_sentence(makeSentence(sentence, this, TextStyle::body, Ink::muted))
    , m_error(makeSentence({}, this, TextStyle::body, Ink::red))
    , m_errorLine(new QWidget(this))
    , m_cancel(makeButton(QStringLiteral("Cancel"), ButtonKind::plain, this))
    , m_width(width)
{
    setWindowTitle(title);
    setWindowModality(Qt::WindowModal);
    if (parent)
        parent->window()->installEventFilter(this);
    setAccessibleName(title);
    setAccessibleDescription(sentence);

    auto* inside = new QWidget;
    m_content = new QVBoxLayout(inside);
    m_content->setContentsMargins(
        Space::group, Space::tiny, Space::group, Space::tiny); // Room for focus rings.
    m_content->setSpacing(Space::small);
    m_scroll->setWidget(inside);
    m_scroll->setWidgetResizable(true);
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setFocusPolicy(Qt::NoFocus);
    m_scroll->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    m_scroll->viewport()->setAutoFillBackground(false);
    inside->setAutoFillBackground(false);

    auto* head = new QVBoxLayout;
    head->setContentsMargins(Space::group, 0, Space::group, 0);
    head->setSpacing(Space::tiny);
    head->addWidget(m_title);
    head->addWidget(m_sentence);
    m_sentence->setVisible(!sentence.isEmpty());

    auto* error = new QHBoxLayout(m_errorLine);
    error->setContentsMargins(Space::group, 0, Space::group, 0);
    error->setSpacing(Space::small);
    error->addWidget(m_error, 1);
    m_errorLine->hide();

    auto* foot = new QHBoxLayout;
    foot->setContentsMargins(Space::group - Space::small, 0, Space::group, 0);
    foot->setSpacing(Space::small);
    m_aside = new QHBoxLayout;
    m_aside->setContentsMargins(Space::small, 0, 0, 0);
    m_aside->setSpacing(Space::small);
    m_buttons = new QHBoxLayout;
    m_buttons->setSpacing(Space::small);
    m_buttons->addWidget(m_cancel);
    foot->addLayout(m_aside);
    foot->addStretch();
    foot->addLayout(m_buttons);

    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(0, Space::group, 0, Space::group);
    box->setSpacing(Space::large);
    box->addLayout(head);
    box->addWidget(m_scroll, 1);
    box->addWidget(m_errorLine);
    box->addLayout(foot);
    connect(m_cancel, &QPushButton::clicked, this, &QDialog::reject);
    dress();
}

QPushButton* SheetDialog::setDefault(const QString& text, std::function<QString()> what, Return atReturn)
{
    if (!m_default) {
        m_default = makeButton(text, ButtonKind::primary, this);
        m_buttons->addWidget(m_default);
        connect(m_default, &QPushButton::clicked, this, &SheetDialog::act);
    }
    m_default->setText(text);
    m_act = std::move(what);
    m_atReturn = atReturn;
    return m_default;
}

void SheetDialog::addAside(QWidget* button)
{
    if (m_aside->isEmpty() && kindOf(button) == ButtonKind::quiet)
        m_aside->setContentsMargins(0, 0, 0, 0); // Its text stands at the margin, not its invisible edge.
    m_aside->addWidget(button);
}

void SheetDialog::setSentence(const QString& sentence)
{
    m_sentence->setText(sentence);
    m_sentence->setVisible(!sentence.isEmpty());
    setAccessibleDescription(sentence);
    fit();
}

QString SheetDialog::error() const { return m_error->text(); }

void SheetDialog::showError(const QString& sentence)
{
    m_error->setText(sentence);
    m_errorLine->setVisible(!sentence.isEmpty());
    announce(m_errorLine, sentence);
    fit();
}

void SheetDialog::openSheet()
{
    m_opener = QApplication::focusWidget();
    open();
}

void SheetDialog::act()
{
    if (!commitFocusedField(this))
        return; // The reason stands under the field.
    const auto refusal = m_act ? m_act() : QString();
    showError(refusal);
    if (refusal.isEmpty())
        accept();
}

void SheetDialog::done(int result)
{
    if (result == QDialog::Rejected)
        commitFocusedField(this);
    QDialog::done(result);
    if (m_opener)
        m_opener->setFocus(Qt::OtherFocusReason);
}

void SheetDialog::keyPressEvent(QKeyEvent* event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn) {
        if (event->isAutoRepeat()) // Held since before the sheet opened.
            return;
        auto* focused = qobject_cast<QPushButton*>(focusWidget());
        const bool isPlain = !(event->modifiers() & ~Qt::KeypadModifier);
        if (focused && isPlain)
            focused->click();
        else if (m_default && m_default->isEnabled() && m_atReturn == Return::pressesDefault
            && (isPlain || event->modifiers() == Qt::ControlModifier))
            m_default->click();
        return;
    }
    QDialog::keyPressEvent(event); // Esc.
}

void SheetDialog::showEvent(QShowEvent* event)
{
    fit();
    if (auto* field = m_first ? m_first.data() : m_cancel) {
        field->setFocus(Qt::TabFocusReason);
        if (auto* line = qobject_cast<QLineEdit*>(field))
            line->selectAll();
    }
    QDialog::showEvent(event);
}

void SheetDialog::paintEvent(QPaintEvent*)
{
    const auto& theme = Theme::of(this);
    QPainter painter(this);
    painter.fillRect(rect(), theme.colours.raised);
    if (m_errorLine->isVisible()) {
        const int side = theme.scaled(16), line = m_error->fontMetrics().height();
        const auto place = m_errorLine->mapTo(this, QPoint(Space::group, 0));
        drawIcon(painter, Icon::warning, QRectF(place.x(), place.y() + (line - side) / 2.0, side, side),
            theme.colours.tone(Tone::red).text);
    }
}

void SheetDialog::changeEvent(QEvent* event)
{
    QDialog::changeEvent(event);
    if (event->type() == QEvent::StyleChange) {
        dress();
        QMetaObject::invokeMethod(this, &SheetDialog::fit, Qt::QueuedConnection); // What it holds goes first.
    }
}

// The window below has become smaller or larger.
bool SheetDialog::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize && isVisible())
        fit();
    return QDialog::eventFilter(watched, event);
}

void SheetDialog::dress()
{
    const auto& theme = Theme::of(this);
    setPalette(theme.palette(theme.colours.raised));
    m_errorLine->layout()->setContentsMargins(
        Space::group + theme.scaled(16) + Space::small, 0, Space::group, 0);
}

void SheetDialog::fit()
{
    const auto& theme = Theme::of(this);
    const auto room = parentWidget() ? parentWidget()->window()->size() : screen()->availableSize();
    const int width = std::min(theme.scaled(static_cast<int>(m_width)), room.width() * 9 / 10);
    setFixedWidth(width);
    m_scroll->resize(width, m_scroll->height());
    m_scroll->updateGeometry(); // The height that it asks for goes by its width.
    layout()->activate();
    const int wanted
        = layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(width) : sizeHint().height();
    const int most = room.height() * 9 / 10;
    setMinimumHeight(std::min(layout()->totalMinimumSize().height(), most));
    resize(width, std::min(std::max(wanted, 160), most));
}

} // namespace Pallisande
