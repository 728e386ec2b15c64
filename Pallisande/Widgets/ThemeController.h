#pragma once

#include "Pallisande/Widgets/Theme.h"

#include <QObject>

#include <functional>

class QApplication;

namespace Pallisande {

class ThemeStyle;

enum class Appearance { system, light, dark };

// What the desktop asks for.
struct SystemLook {
    bool isDark = false;
    bool hasHighContrast = false;
    bool avoidsMotion = false;
};

// Dresses the application: style, palette and fonts, at once and all windows together. `look` is asked
// whenever something changes; call refresh() when the desktop says that it did.
class ThemeController : public QObject {
    Q_OBJECT

public:
    // The font and the palette of `application` now are taken for the system's.
    ThemeController(QApplication& application, std::function<SystemLook()> look, QObject* parent = nullptr);

    const Theme& theme() const;
    Appearance appearance() const { return m_appearance; }
    int textSize() const { return m_textSize; }

    void setAppearance(Appearance appearance);
    void setTextSize(int percent); // Kept between 85 and 200.
    void refresh();

signals:
    void changed();

private:
    Theme made() const;

    QApplication& m_application;
    std::function<SystemLook()> m_look;
    QFont m_systemFont;
    QPalette m_systemPalette;
    ThemeStyle* m_style; // Of the application.
    Appearance m_appearance = Appearance::system;
    int m_textSize = 100;
};

} // namespace Pallisande
