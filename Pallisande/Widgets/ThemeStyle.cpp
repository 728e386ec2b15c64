#include "Pallisande/Widgets/ThemeStyle.h"

#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/FocusRing.h"
#include "Pallisande/Widgets/TableDelegate.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QStyleOption>
#include <QTabBar>

namespace Pallisande {

namespace {

constexpr int fieldPadding = 6; // To which QLineEdit adds 2 of its own,
constexpr int boxPadding = 8; // and which this stands in line with.
constexpr int buttonPadding = 14, quietPadding = 8, leastButtonWidth = 72;
constexpr int scrollBarWidth = 12;

} // namespace

ThemeStyle::ThemeStyle(const Theme& theme)
    : QProxyStyle(QStringLiteral("Fusion"))
    , m_theme(theme)
{
    new FocusRing(this);
    qApp->installEventFilter(this);
}

ThemeStyle::~ThemeStyle() = default;

bool ThemeStyle::eventFilter(QObject* watched, QEvent* event)
{
    const bool isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
    if (!isKey && event->type() != QEvent::ApplicationDeactivate)
        return QProxyStyle::eventFilter(watched, event);
    const bool shows = event->type() == QEvent::KeyPress
        && (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Alt
            || static_cast<QKeyEvent*>(event)->modifiers() & Qt::AltModifier);
    if (shows != m_showsMnemonics) {
        m_showsMnemonics = shows;
        for (auto* window : QApplication::topLevelWidgets())
            window->update();
    }
    return QProxyStyle::eventFilter(watched, event);
}

void ThemeStyle::polish(QWidget* widget)
{
    QProxyStyle::polish(widget);
    if (qobject_cast<QAbstractButton*>(widget) || qobject_cast<QComboBox*>(widget)
        || qobject_cast<QLineEdit*>(widget) || qobject_cast<QScrollBar*>(widget)
        || qobject_cast<QTabBar*>(widget))
        widget->setAttribute(Qt::WA_Hover);
    if (auto* view = qobject_cast<QAbstractItemView*>(widget))
        view->viewport()->setAttribute(Qt::WA_Hover);
}

int ThemeStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const
{
    switch (metric) {
    case PM_ScrollBarExtent:
        return scrollBarWidth;
    case PM_ScrollBarSliderMin:
        return 32;
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
    case PM_SmallIconSize:
    case PM_ButtonIconSize:
        return m_theme.iconSize();
    case PM_ToolBarIconSize:
    case PM_TabBarIconSize:
        return m_theme.scaled(18);
    case PM_CheckBoxLabelSpacing:
    case PM_RadioButtonLabelSpacing:
        return Space::small;
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
        return 0;
    case PM_FocusFrameHMargin:
    case PM_FocusFrameVMargin:
        return FocusRing::margin;
    case PM_SplitterWidth:
        return 5;
    case PM_LayoutHorizontalSpacing:
    case PM_LayoutVerticalSpacing:
        return Space::small;
    case PM_LayoutLeftMargin:
    case PM_LayoutTopMargin:
    case PM_LayoutRightMargin:
    case PM_LayoutBottomMargin:
        return Space::medium;
    case PM_ToolBarItemMargin:
        return 10; // With the frame it makes a bar of 52 around controls of 30.
    case PM_ToolBarFrameWidth:
        return 1;
    case PM_ToolBarItemSpacing:
        return Space::small;
    case PM_HeaderMargin:
        return tablePadding(widget);
    case PM_TabBarTabShiftHorizontal:
    case PM_TabBarTabShiftVertical:
        return 0;
    case PM_DefaultFrameWidth:
        if (qobject_cast<const QMenu*>(widget))
            return Space::tiny;
        break;
    default:
        break;
    }
    return QProxyStyle::pixelMetric(metric, option, widget);
}

int ThemeStyle::styleHint(
    StyleHint hint, const QStyleOption* option, const QWidget* widget, QStyleHintReturn* result) const
{
    switch (hint) {
    case SH_Widget_Animation_Duration:
        return m_theme.animates ? 150 : 0;
    case SH_FocusFrame_AboveWidget:
        return 1;
    case SH_EtchDisabledText:
    case SH_DitherDisabledText:
    case SH_ComboBox_Popup:
        return 0;
    case SH_UnderlineShortcut:
        return m_showsMnemonics || qobject_cast<const QMenu*>(widget) ? 1 : 0;
    case SH_ItemView_ChangeHighlightOnFocus:
        return 1;
    case SH_ScrollView_FrameOnlyAroundContents:
        return 0;
    case SH_ToolTip_WakeUpDelay:
        return 600;
    default:
        return QProxyStyle::styleHint(hint, option, widget, result);
    }
}

QSize ThemeStyle::buttonSize(const QString& text, bool hasIcon, bool hasMenu, const QWidget* widget) const
{
    const auto metrics = widget ? widget->fontMetrics() : QFontMetrics(m_theme.font(TextStyle::body));
    const bool isQuiet = kindOf(widget) == ButtonKind::quiet;
    const int height = std::max(m_theme.controlHeight(), metrics.height() + Space::small);
    int width = hasIcon ? m_theme.iconSize() : 0;
    if (text.isEmpty())
        return { std::max(height, width + 2 * quietPadding), height };
    width += metrics.size(Qt::TextShowMnemonic, text).width() + (hasIcon ? Space::small : 0)
        + (hasMenu ? m_theme.iconSize() + Space::tiny : 0) + 2 * (isQuiet ? quietPadding : buttonPadding);
    return { isQuiet ? width : std::max(width, m_theme.scaled(leastButtonWidth)), height };
}

QSize ThemeStyle::sizeFromContents(
    ContentsType type, const QStyleOption* option, const QSize& size, const QWidget* widget) const
{
    const int textHeight = option ? option->fontMetrics.height() : 0;
    const int fieldHeight = std::max(m_theme.controlHeight(), textHeight + Space::small);
    switch (type) {
    case CT_PushButton:
        if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option))
            return buttonSize(
                button->text, !button->icon.isNull(), button->features & QStyleOptionButton::HasMenu, widget);
        break;
    case CT_ToolButton:
        if (const auto* button = qstyleoption_cast<const QStyleOptionToolButton*>(option)) {
            const bool showsText = button->toolButtonStyle != Qt::ToolButtonIconOnly || button->icon.isNull();
            return buttonSize(showsText ? button->text : QString(), !button->icon.isNull(),
                button->features & QStyleOptionToolButton::HasMenu, widget);
        }
        break;
    case CT_LineEdit:
        return { size.width() + 2 * fieldPadding, fieldHeight };
    case CT_ComboBox: {
        const int arrow = m_theme.iconSize() + Space::small;
        return { size.width() + 2 * boxPadding + arrow, fieldHeight };
    }
    case CT_CheckBox:
    case CT_RadioButton: {
        // As wide as box and text, so that a text at the right ends where everything else does.
        const int box = m_theme.iconSize(), text = size.width() > 0 ? Space::small + size.width() + 1 : 0;
        return { box + text, std::max({ size.height(), box, m_theme.scaled(28) }) };
    }
    case CT_ProgressBar:
        return { size.width(), Space::medium };
    case CT_MenuItem: {
        const auto natural = QProxyStyle::sizeFromContents(type, option, size, widget);
        const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        const bool isSeparator = item && item->menuItemType == QStyleOptionMenuItem::Separator;
        return { natural.width() + Space::small,
            isSeparator ? natural.height() : std::max(natural.height(), m_theme.scaled(28)) };
    }
    case CT_ItemViewItem: {
        const auto natural = QProxyStyle::sizeFromContents(type, option, size, widget);
        return { natural.width(), std::max(natural.height(), m_theme.scaled(28)) };
    }
    case CT_HeaderSection: {
        const auto natural = QProxyStyle::sizeFromContents(type, option, size, widget);
        return { natural.width(), std::max(natural.height(), m_theme.scaled(28)) };
    }
    case CT_TabBarTab: {
        const auto natural = QProxyStyle::sizeFromContents(type, option, size, widget);
        return { natural.width() + Space::large, std::max(natural.height(), m_theme.scaled(36)) };
    }
    default:
        break;
    }
    return QProxyStyle::sizeFromContents(type, option, size, widget);
}

QRect ThemeStyle::subElementRect(SubElement element, const QStyleOption* option, const QWidget* widget) const
{
    switch (element) {
    case SE_LineEditContents:
        return option->rect.adjusted(fieldPadding, m_theme.edge, -fieldPadding, -m_theme.edge);
    case SE_PushButtonFocusRect:
    case SE_ToolBoxTabContents:
        return option->rect;
    case SE_TabWidgetTabBar: { // The line under the tabs goes on to the edge.
        auto bar = QProxyStyle::subElementRect(element, option, widget);
        bar.setLeft(option->rect.left());
        bar.setRight(option->rect.right());
        return bar;
    }
    case SE_ProgressBarGroove:
    case SE_ProgressBarContents:
        return option->rect;
    default:
        return QProxyStyle::subElementRect(element, option, widget);
    }
}

QRect ThemeStyle::subControlRect(
    ComplexControl control, const QStyleOptionComplex* option, SubControl part, const QWidget* widget) const
{
    const auto area = option->rect;
    if (control == CC_ComboBox) {
        const int arrow = m_theme.iconSize() + Space::small, padding = boxPadding;
        const QRect field(
            area.left() + padding, area.top(), area.width() - 2 * padding - arrow, area.height());
        if (part == SC_ComboBoxEditField)
            return visualRect(option->direction, area, field);
        if (part == SC_ComboBoxArrow)
            return visualRect(option->direction, area,
                QRect(area.right() + 1 - arrow - Space::tiny, area.top(), arrow, area.height()));
        if (part == SC_ComboBoxListBoxPopup)
            return area.translated(0, Space::tiny);
        return area;
    }
    if (control == CC_ScrollBar) {
        const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
        if (!bar)
            return {};
        const bool isHorizontal = bar->orientation == Qt::Horizontal;
        const int length = isHorizontal ? area.width() : area.height();
        const int range = bar->maximum - bar->minimum;
        int handle = length;
        if (range > 0)
            handle = std::min(length,
                std::max(pixelMetric(PM_ScrollBarSliderMin, option, widget),
                    static_cast<int>(
                        std::int64_t { length } * bar->pageStep / (std::int64_t { range } + bar->pageStep))));
        const int start = sliderPositionFromValue(
            bar->minimum, bar->maximum, bar->sliderPosition, length - handle, bar->upsideDown);
        const auto along = [&](int from, int size) {
            return isHorizontal ? QRect(area.left() + from, area.top(), size, area.height())
                                : QRect(area.left(), area.top() + from, area.width(), size);
        };
        switch (part) {
        case SC_ScrollBarGroove:
            return area;
        case SC_ScrollBarSlider:
            return along(start, handle);
        case SC_ScrollBarSubPage:
            return along(0, start);
        case SC_ScrollBarAddPage:
            return along(start + handle, length - start - handle);
        default:
            return {}; // No arrows.
        }
    }
    return QProxyStyle::subControlRect(control, option, part, widget);
}

void setInvalid(QWidget* field, bool isInvalid)
{
    field->setProperty("isInvalid", isInvalid);
    field->update();
}

} // namespace Pallisande
