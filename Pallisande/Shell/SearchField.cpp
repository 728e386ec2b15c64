#include "Pallisande/Shell/SearchField.h"

#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Icons.h"
#include "Pallisande/Widgets/Theme.h"

#include <QAction>
#include <QKeyEvent>

namespace Pallisande {

namespace {

constexpr std::chrono::milliseconds delay { 120 };
constexpr int besideHint = 56, usualWidth = 260, mostWidth = 320;

} // namespace

SearchField::SearchField(AppModel& model, QWidget* parent)
    : QLineEdit(parent)
    , m_model(model)
{
    setObjectName(QStringLiteral("search"));
    addAction(themedIcon(Icon::magnifier), QLineEdit::LeadingPosition);
    m_clear = addAction(themedIcon(Icon::cross), QLineEdit::TrailingPosition);
    m_clear->setToolTip(QStringLiteral("Clear Search"));
    m_clear->setText(QStringLiteral("Clear Search"));
    m_clear->setVisible(false);
    connect(m_clear, &QAction::triggered, this, [this] {
        clear();
        flush();
    });
    connect(this, &QLineEdit::textChanged, this, [this] { m_clear->setVisible(!text().isEmpty()); });
    connect(this, &QLineEdit::textEdited, this,
        [this] { m_pending = m_model.services().after(delay, [this] { flush(); }); });
    connect(&model, &AppModel::searchChanged, this, [this](AppSection section) {
        if (section == m_section && !m_pending && text() != qt(m_model.search(section)))
            setText(qt(m_model.search(section)));
    });
    dress();
}

void SearchField::showSection(AppSection section, const QString& hint)
{
    if (m_pending)
        flush(); // It was typed for the section before.
    m_section = section;
    setVisible(!hint.isEmpty());
    setPlaceholderText(hint);
    setAccessibleName(hint);
    dress();
    if (section != AppSection::deadlines)
        setText(qt(m_model.search(section)));
}

void SearchField::flush()
{
    m_pending.reset();
    m_model.setSearch(m_section, plain(text()));
}

void SearchField::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Escape:
        if (text().isEmpty()) {
            emit listWanted();
        } else {
            clear();
            flush();
        }
        return;
    case Qt::Key_Down:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        flush();
        emit listWanted();
        return;
    default:
        QLineEdit::keyPressEvent(event);
    }
}

QSize SearchField::sizeHint() const
{
    return { Theme::of(this).scaled(usualWidth), QLineEdit::sizeHint().height() };
}

void SearchField::changeEvent(QEvent* event)
{
    QLineEdit::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        dress();
}

void SearchField::dress()
{
    const auto& theme = Theme::of(this);
    setMinimumWidth(fontMetrics().horizontalAdvance(placeholderText()) + theme.scaled(besideHint));
    setMaximumWidth(theme.scaled(mostWidth));
}

} // namespace Pallisande
