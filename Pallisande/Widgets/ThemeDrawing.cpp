#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/FocusRing.h"
#include "Pallisande/Widgets/Painting.h"
#include "Pallisande/Widgets/ThemeStyle.h"

#include <QAbstractItemView>
#include <QFocusFrame>
#include <QPlainTextEdit>
#include <QStyleOption>

namespace Pallisande {

// What push buttons and tool buttons have in common.
struct ThemeStyle::Button {
    QString text;
    QIcon icon;
    ButtonKind kind;
    bool hasMenu = false;
};

void ThemeStyle::drawButton(QPainter& painter, const QStyleOption& option, const Button& button) const
{
    const auto& colours = m_theme.colours;
    const bool isEnabled = option.state & State_Enabled;
    const bool isPrimary = button.kind == ButtonKind::primary && isEnabled;
    const bool isQuiet = button.kind == ButtonKind::quiet;
    const bool isDown = isEnabled && option.state & (State_Sunken | State_On);
    const bool isHovered = isEnabled && option.state & State_MouseOver;
    auto ink = !isEnabled                                      ? colours.disabled
        : isPrimary                                            ? colours.onAccent
        : isQuiet && !button.text.isEmpty() && !button.hasMenu ? colours.accent
                                                               : colours.text;
    auto fill = isPrimary ? colours.accent : isQuiet ? QColor(Qt::transparent) : colours.raised;
    if (isPrimary)
        fill = blend(fill, colours.text, isDown ? 0.2 : isHovered ? 0.1 : 0);
    else if (isDown || isHovered)
        fill = isDown ? colours.selectInactive : colours.hover;
    else if (!isEnabled)
        fill = Qt::transparent;
    drawSurface(
        painter, option.rect, Radius::field, fill, colours.outline, isPrimary || isQuiet ? 0 : m_theme.edge);

    const int icon = button.icon.isNull() ? 0 : m_theme.iconSize();
    const int gap = icon && !button.text.isEmpty() ? Space::small : 0;
    const int arrow = button.hasMenu ? m_theme.iconSize() + Space::tiny : 0;
    const int flags = Qt::AlignVCenter | Qt::TextSingleLine
        | (styleHint(SH_UnderlineShortcut, &option, nullptr, nullptr) ? Qt::TextShowMnemonic
                                                                      : Qt::TextHideMnemonic);
    const int room = option.rect.width() - 2 * Space::tiny - icon - gap - arrow;
    const int wanted = option.fontMetrics.size(flags | Qt::TextShowMnemonic, button.text).width();
    const auto text
        = wanted > room ? option.fontMetrics.elidedText(button.text, Qt::ElideMiddle, room) : button.text;
    const int width = std::min(wanted, room);
    QRect place(0, 0, icon + gap + width + arrow, option.rect.height());
    place.moveCenter(option.rect.center());
    const auto placed = [&](int from, int size) {
        return visualRect(
            option.direction, option.rect, QRect(place.left() + from, place.top(), size, place.height()));
    };
    if (icon) {
        // Icons come in the colour of plain text; on a filled button theirs is another.
        auto pixmap = button.icon.pixmap(QSize(icon, icon), painter.device()->devicePixelRatioF());
        QPainter tint(&pixmap);
        tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
        tint.fillRect(pixmap.rect(), ink);
        tint.end();
        const auto area = placed(0, icon);
        painter.drawPixmap(area.left(), area.top() + (area.height() - icon) / 2, pixmap);
    }
    painter.setPen(ink);
    painter.drawText(placed(icon + gap, width), flags, text);
    if (arrow)
        drawIcon(painter, Icon::chevronDown,
            placed(icon + gap + width + Space::tiny, m_theme.iconSize()).adjusted(2, 2, -2, -2),
            !isEnabled                    ? colours.disabled
                : ink == colours.onAccent ? ink
                                          : colours.muted);
}

void ThemeStyle::drawField(QPainter& painter, const QStyleOption& option, const QWidget* widget) const
{
    const auto& colours = m_theme.colours;
    const bool isInvalid = widget && widget->property("isInvalid").toBool();
    const bool isEnabled = option.state & State_Enabled, isReadOnly = option.state & State_ReadOnly;
    const auto edge = isInvalid    ? colours.tone(Tone::red).text
        : isEnabled && !isReadOnly ? colours.outline
                                   : colours.border;
    drawSurface(painter, option.rect, Radius::field,
        isEnabled && !isReadOnly ? colours.content : QColor(Qt::transparent), edge,
        isInvalid ? std::max(2, m_theme.edge) : m_theme.edge);
}

void ThemeStyle::drawTick(QPainter& painter, const QStyleOption& option, bool isRound) const
{
    const auto& colours = m_theme.colours;
    const bool isEnabled = option.state & State_Enabled;
    const bool isOn = option.state & State_On, isMixed = option.state & State_NoChange;
    QRectF box(option.rect);
    const double radius = isRound ? box.height() / 2 : 4;
    const auto fill = (isOn || isMixed) && isEnabled  ? colours.accent
        : isEnabled && option.state & State_MouseOver ? colours.hover
        : isEnabled                                   ? colours.content
                                                      : QColor(Qt::transparent);
    const auto mark = isEnabled ? colours.onAccent : colours.disabled;
    drawSurface(
        painter, box, radius, fill, isOn && isEnabled ? colours.accent : colours.outline, m_theme.edge);
    const double inset = box.width() / (isRound ? 3.2 : 10);
    const auto inner = box.adjusted(inset, inset, -inset, -inset);
    if (isRound && isOn)
        drawSurface(painter, inner, inner.height(), mark);
    else if (isOn || isMixed)
        drawIcon(painter, isMixed ? Icon::minus : Icon::check, inner, mark);
}

void ThemeStyle::drawRow(QPainter& painter, const QStyleOptionViewItem& option, const QWidget* widget) const
{
    const auto& colours = m_theme.colours;
    if (option.state & State_Selected) {
        const bool isActive = option.state & State_Active && (!widget || widget->isActiveWindow());
        painter.fillRect(option.rect, isActive ? colours.select : colours.selectInactive);
    } else if (option.state & State_MouseOver && option.state & State_Enabled) {
        painter.fillRect(option.rect, colours.hover);
    } else if (option.backgroundBrush.style() != Qt::NoBrush) {
        painter.fillRect(option.rect, option.backgroundBrush);
    }
}

void ThemeStyle::drawScrollBar(
    QPainter& painter, const QStyleOptionSlider& option, const QWidget* widget) const
{
    if (option.maximum <= option.minimum)
        return;
    auto handle = QRectF(subControlRect(CC_ScrollBar, &option, SC_ScrollBarSlider, widget));
    const bool isHovered = option.state & State_MouseOver || option.state & State_Sunken;
    const double across = isHovered ? 2 : 3;
    handle.adjust(across, across, -across, -across);
    drawSurface(painter, handle, Radius::field, isHovered ? m_theme.colours.muted : m_theme.colours.outline);
}

void ThemeStyle::drawProgress(QPainter& painter, const QStyleOption& option) const
{
    const auto* bar = qstyleoption_cast<const QStyleOptionProgressBar*>(&option);
    QRectF groove(option.rect);
    groove.setHeight(6);
    groove.moveCenter(QRectF(option.rect).center());
    drawSurface(painter, groove, 3, m_theme.colours.selectInactive);
    if (!bar)
        return;
    const bool isKnown = bar->maximum > bar->minimum; // Otherwise nobody knows how much there is.
    const double share = isKnown ? double(bar->progress - bar->minimum) / (bar->maximum - bar->minimum) : 0.3;
    groove.setWidth(groove.width() * std::clamp(share, 0.0, 1.0));
    if (groove.width() > 0)
        drawSurface(painter, groove, 3, m_theme.colours.accent);
}

void ThemeStyle::drawTab(QPainter& painter, const QStyleOption& option) const
{
    const auto& colours = m_theme.colours;
    const bool isSelected = option.state & State_Selected;
    const auto inner = QRectF(option.rect).adjusted(Space::tiny, Space::tiny, -Space::tiny, -Space::tiny);
    if (option.state & State_MouseOver && !isSelected)
        drawSurface(painter, inner, Radius::field, colours.hover);
    drawLineBelow(painter, option.rect, colours.border);
    if (isSelected)
        drawSurface(
            painter, QRectF(inner.left(), option.rect.bottom() - 1, inner.width(), 2), 1, colours.accent);
}

void ThemeStyle::drawHeaderSection(QPainter& painter, const QStyleOption& option) const
{
    painter.fillRect(option.rect, m_theme.colours.inset);
    drawLineBelow(painter, option.rect, m_theme.colours.border);
}

void ThemeStyle::drawPrimitive(
    PrimitiveElement element, const QStyleOption* option, QPainter* painter, const QWidget* widget) const
{
    const auto& colours = m_theme.colours;
    switch (element) {
    case PE_PanelLineEdit:
        if (widget && widget->property("isBare").toBool())
            return;
        return drawField(*painter, *option, widget);
    case PE_FrameLineEdit:
    case PE_FrameDefaultButton:
        return;
    case PE_Frame:
        if (qobject_cast<const QPlainTextEdit*>(widget))
            return drawField(*painter, *option, widget);
        return drawSurface(
            *painter, option->rect, Radius::field, Qt::transparent, colours.border, hairline(*painter));
    case PE_FrameFocusRect:
        // Everything else has the ring around it.
        if (qobject_cast<const QAbstractItemView*>(widget) && option->state & State_KeyboardFocusChange)
            drawSurface(
                *painter, option->rect, Radius::field, Qt::transparent, colours.accent, FocusRing::width);
        return;
    case PE_IndicatorCheckBox:
    case PE_IndicatorItemViewItemCheck:
        return drawTick(*painter, *option, false);
    case PE_IndicatorRadioButton:
        return drawTick(*painter, *option, true);
    case PE_PanelItemViewItem:
        if (const auto* item = qstyleoption_cast<const QStyleOptionViewItem*>(option))
            drawRow(*painter, *item, widget);
        return;
    case PE_PanelMenu:
        painter->fillRect(option->rect, colours.raised);
        return;
    case PE_FrameMenu:
    case PE_PanelTipLabel:
        if (element == PE_PanelTipLabel)
            painter->fillRect(option->rect, colours.raised);
        return drawSurface(*painter, option->rect, 0, Qt::transparent, colours.border, 1);
    case PE_FrameTabWidget:
        return; // Pages lie on the window itself.
    case PE_FrameTabBarBase:
        return drawLineBelow(*painter, option->rect, colours.border);
    case PE_IndicatorBranch:
        if (option->state & State_Children) {
            const double side = m_theme.scaled(12);
            QRectF area(0, 0, side, side);
            area.moveCenter(QRectF(option->rect).center());
            drawIcon(*painter, option->state & State_Open ? Icon::chevronDown : Icon::chevronRight, area,
                colours.muted);
        }
        return;
    case PE_IndicatorArrowDown:
    case PE_IndicatorArrowUp:
    case PE_IndicatorArrowLeft:
    case PE_IndicatorArrowRight: {
        const auto icon = element == PE_IndicatorArrowDown ? Icon::chevronDown
            : element == PE_IndicatorArrowUp               ? Icon::chevronUp
            : element == PE_IndicatorArrowLeft             ? Icon::chevronLeft
                                                           : Icon::chevronRight;
        return drawIcon(
            *painter, icon, option->rect, option->state & State_Enabled ? colours.muted : colours.disabled);
    }
    default:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void ThemeStyle::drawControl(
    ControlElement element, const QStyleOption* option, QPainter* painter, const QWidget* widget) const
{
    const auto& colours = m_theme.colours;
    switch (element) {
    case CE_PushButton:
        if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option))
            drawButton(*painter, *option,
                { button->text, button->icon, kindOf(widget),
                    (button->features & QStyleOptionButton::HasMenu) != 0 });
        return;
    case CE_ComboBoxLabel:
        if (const auto* box = qstyleoption_cast<const QStyleOptionComboBox*>(option); box && !box->editable) {
            auto area = subControlRect(CC_ComboBox, box, SC_ComboBoxEditField, widget);
            if (!box->currentIcon.isNull()) {
                const int size = m_theme.iconSize();
                box->currentIcon.paint(painter, QRect(area.left(), area.top(), size, area.height()));
                area.setLeft(area.left() + size + Space::small);
            }
            painter->setPen(option->state & State_Enabled ? colours.text : colours.disabled);
            drawLine(*painter, area, box->currentText, Qt::AlignVCenter | Qt::AlignLeft, Qt::ElideRight);
        }
        return;
    case CE_ShapedFrame:
        if (const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
            frame && (frame->frameShape == QFrame::HLine || frame->frameShape == QFrame::VLine)) {
            const double width = hairline(*painter);
            const auto& area = option->rect;
            painter->fillRect(frame->frameShape == QFrame::HLine
                    ? QRectF(area.left(), area.center().y(), area.width(), width)
                    : QRectF(area.center().x(), area.top(), width, area.height()),
                colours.border);
            return;
        }
        break;
    case CE_FocusFrame: {
        const auto* frame = qobject_cast<const QFocusFrame*>(widget);
        const int corner
            = frame && frame->widget() ? FocusRing::cornerOf(frame->widget()) : int(Radius::field);
        return drawSurface(*painter, option->rect, corner + FocusRing::margin, Qt::transparent,
            colours.accent, FocusRing::width);
    }
    case CE_TabBarTabShape:
        return drawTab(*painter, *option);
    case CE_HeaderSection:
    case CE_HeaderEmptyArea:
        return drawHeaderSection(*painter, *option);
    case CE_HeaderLabel:
        if (const auto* header = qstyleoption_cast<const QStyleOptionHeader*>(option)) {
            auto muted = *header;
            muted.palette.setColor(QPalette::ButtonText, colours.muted);
            QProxyStyle::drawControl(element, &muted, painter, widget);
        }
        return;
    case CE_ProgressBarGroove:
    case CE_ProgressBarLabel:
        return; // The label beside it says how far it is.
    case CE_ProgressBarContents:
        return drawProgress(*painter, *option);
    case CE_Splitter: {
        const auto& area = option->rect;
        const double width = hairline(*painter);
        const bool isUpright = option->state & State_Horizontal;
        painter->fillRect(isUpright ? QRectF(area.center().x(), area.top(), width, area.height())
                                    : QRectF(area.left(), area.center().y(), area.width(), width),
            colours.border);
        return;
    }
    case CE_ToolBar:
        painter->fillRect(option->rect, colours.window);
        return drawLineBelow(*painter, option->rect, colours.border);
    default:
        break;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

void ThemeStyle::drawComplexControl(
    ComplexControl control, const QStyleOptionComplex* option, QPainter* painter, const QWidget* widget) const
{
    const auto& colours = m_theme.colours;
    if (control == CC_ScrollBar) {
        if (const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option))
            drawScrollBar(*painter, *bar, widget);
        return;
    }
    if (const auto* box = qstyleoption_cast<const QStyleOptionComboBox*>(option);
        control == CC_ComboBox && box && !box->editable) {
        drawField(*painter, *option, widget);
        const double size = m_theme.scaled(12);
        QRectF arrow(0, 0, size, size);
        arrow.moveCenter(QRectF(subControlRect(control, option, SC_ComboBoxArrow, widget)).center());
        drawIcon(*painter, Icon::chevronDown, arrow,
            option->state & State_Enabled ? colours.muted : colours.disabled);
        return;
    }
    if (const auto* tool = qstyleoption_cast<const QStyleOptionToolButton*>(option); control == CC_ToolButton
        && tool && tool->arrowType == Qt::NoArrow && tool->toolButtonStyle != Qt::ToolButtonTextUnderIcon) {
        const bool showsText = tool->toolButtonStyle != Qt::ToolButtonIconOnly || tool->icon.isNull();
        drawButton(*painter, *option,
            { showsText ? tool->text : QString(), tool->icon, kindOf(widget),
                (tool->features & QStyleOptionToolButton::HasMenu) != 0 });
        return;
    }
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

} // namespace Pallisande
