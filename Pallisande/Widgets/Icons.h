#pragma once

#include <QColor>
#include <QIcon>
#include <QRectF>

class QPainter;

namespace Pallisande {

// Strokes of our own on a grid of 24; their shapes stand in IconShapes.cpp.
enum class Icon {
    clock,
    list,
    sigma,
    person,
    invoice,
    barChart,
    twoArrows,
    plus,
    magnifier,
    gear,
    warning,
    info,
    check,
    cross,
    chevronUp,
    chevronDown,
    chevronLeft,
    chevronRight,
    arrowUpRight,
    folder,
    document,
    spreadsheet,
    presentation,
    pdf,
    code,
    subtitles,
    lock,
    undo,
    redo,
    trash,
    archive,
    pencil,
    copy,
    paperClip,
    download,
    upload,
    printer,
    mail,
    calendar,
    globe,
    coins,
    percent,
    scales,
    bell,
    sidebar,
    inspector,
    dropTray,
    spinner,
    link,
    // The marks of chips.
    diamond,
    halfCircle,
    page,
    dot,
    barred,
    dottedCircle,
    circle,
    exclamation,
    returning,
    minus,
};
inline constexpr int iconCount = static_cast<int>(Icon::minus) + 1;

const char* iconShape(Icon icon); // SVG elements.

void drawIcon(QPainter& painter, Icon icon, const QRectF& area, const QColor& colour);

// For buttons, actions and menus: takes the colour of the text beside it, also after a change of theme.
QIcon themedIcon(Icon icon);

// The program's own: a leaf-shaped page with nine bars in the order of the bands.
QIcon applicationIcon();

} // namespace Pallisande
