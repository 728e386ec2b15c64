#include "Pallisande/Widgets/ThemeController.h"

#include "Pallisande/Widgets/ThemeStyle.h"

#include <QApplication>
#include <QEvent>
#include <QToolTip>
#include <QWidget>

#include <algorithm>

namespace Pallisande {

ThemeController::ThemeController(QApplication& application, std::function<SystemLook()> look, QObject* parent)
    : QObject(parent)
    , m_application(application)
    , m_look(std::move(look))
    , m_systemFont(application.font())
    , m_systemPalette(application.palette())
    , m_style(new ThemeStyle(made()))
{
    application.setStyle(m_style); // Which owns it from here on.
    refresh();
}

Theme ThemeController::made() const
{
    const auto look = m_look ? m_look() : SystemLook {};
    const bool isDark = m_appearance == Appearance::system ? look.isDark : m_appearance == Appearance::dark;
    const bool ownColours = look.hasHighContrast && m_appearance == Appearance::system;
    Theme theme(ownColours ? Colours::of(m_systemPalette)
            : isDark       ? Colours::dark()
                           : Colours::light(),
        m_systemFont, m_textSize);
    theme.edge = look.hasHighContrast ? 2 : 1;
    theme.animates = !look.avoidsMotion;
    return theme;
}

const Theme& ThemeController::theme() const { return m_style->theme(); }

void ThemeController::setAppearance(Appearance appearance)
{
    m_appearance = appearance;
    refresh();
}

void ThemeController::setTextSize(int percent)
{
    m_textSize = std::clamp(percent, Theme::smallestTextSize, Theme::largestTextSize);
    refresh();
}

void ThemeController::refresh()
{
    m_style->setTheme(made());
    const auto& theme = m_style->theme();
    m_application.setPalette(theme.palette());
    m_application.setFont(theme.font(TextStyle::body));
    m_application.setFont(theme.font(TextStyle::tableHead), "QHeaderView");
    m_application.setFont(theme.font(TextStyle::small), "QTipLabel");
    QToolTip::setPalette(theme.palette(theme.colours.raised));
    QToolTip::setFont(theme.font(TextStyle::small));
    // Widgets that chose a font or colour of their own choose again, and every layout measures anew.
    for (auto* widget : QApplication::allWidgets()) {
        QEvent event(QEvent::StyleChange);
        QApplication::sendEvent(widget, &event);
    }
    emit changed();
}

} // namespace Pallisande
