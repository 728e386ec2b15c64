#include "Pallisande/Settings/LogoWell.h"

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Painting.h"
#include "Pallisande/Widgets/Theme.h"
#include "Printing/LogoImage.h"

#include <QDragEnterEvent>
#include <QMimeData>

namespace Pallisande {

namespace {

constexpr int width_ = 160, height_ = 64;

std::optional<std::filesystem::path> fileOf(const QMimeData* data)
{
    const auto urls = data->urls();
    if (urls.size() != 1 || !urls.front().isLocalFile())
        return std::nullopt;
    return std::filesystem::path(urls.front().toLocalFile().toStdU16String());
}

} // namespace

LogoWell::LogoWell(QWidget* parent)
    : QWidget(parent)
{
    setAcceptDrops(true);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAccessibleName(QStringLiteral("Logo"));
}

QString LogoWell::setLogo(const std::optional<std::string>& logo)
{
    if (logo == m_logo)
        return m_problem;
    m_logo = logo;
    m_image = {};
    m_problem.clear();
    if (logo) {
        try {
            m_image = readLogo(*logo);
        } catch (const std::exception& error) {
            m_problem = qt(error.what());
        }
    }
    setAccessibleDescription(m_image.isNull() ? QStringLiteral("None") : QString());
    update();
    return m_problem;
}

QSize LogoWell::sizeHint() const
{
    const auto& theme = Theme::of(this);
    return { theme.scaled(width_), theme.scaled(height_) };
}

void LogoWell::paintEvent(QPaintEvent*)
{
    const auto& theme = Theme::of(this);
    const auto& colours = theme.colours;
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (!m_image.isNull()) {
        drawSurface(painter, rect(), Radius::field, Qt::white, colours.border, hairline(painter));
        const auto room = QRectF(rect()).adjusted(Space::small, Space::small, -Space::small, -Space::small);
        auto size = QSizeF(m_image.size());
        if (size.width() > room.width() || size.height() > room.height())
            size.scale(room.size(), Qt::KeepAspectRatio);
        QRectF place({}, size);
        place.moveCenter(room.center());
        painter.drawImage(place, m_image);
    } else {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(colours.outline, 1, Qt::DashLine));
        painter.setBrush(colours.inset);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), Radius::field, Radius::field);
        painter.setFont(theme.font(TextStyle::small));
        painter.setPen(colours.muted);
        painter.drawText(rect(), Qt::AlignCenter, QStringLiteral("Drop a logo here"));
    }
    if (m_isMarked)
        drawSurface(
            painter, rect(), Radius::field, blend(colours.card, colours.accent, 0.06), colours.accent, 2);
}

void LogoWell::dragEnterEvent(QDragEnterEvent* event)
{
    if (!isEnabled() || !fileOf(event->mimeData()))
        return;
    event->acceptProposedAction();
    m_isMarked = true;
    update();
}

void LogoWell::dragLeaveEvent(QDragLeaveEvent*)
{
    m_isMarked = false;
    update();
}

void LogoWell::dropEvent(QDropEvent* event)
{
    m_isMarked = false;
    update();
    if (const auto file = fileOf(event->mimeData())) {
        event->acceptProposedAction();
        emit dropped(*file);
    }
}

} // namespace Pallisande
