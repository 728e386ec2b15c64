#pragma once

#include "Pallisande/Widgets/Icons.h"

#include <QPushButton>
#include <QToolButton>

namespace Pallisande {

// Primary: filled, one a page. Plain: outlined. Quiet: text or icon alone, for links and small acts.
enum class ButtonKind { plain, primary, quiet };

void setKind(QAbstractButton* button, ButtonKind kind);
ButtonKind kindOf(const QWidget* button); // Tool buttons are quiet unless told otherwise.

// Return presses it when it has the focus, too; in a sheet it isn't the default unless made so.
QPushButton* makeButton(const QString& text, ButtonKind kind, QWidget* parent);
QPushButton* makeButton(const QString& text, Icon icon, ButtonKind kind, QWidget* parent);

// An icon that does `name`: its tooltip and its accessible name.
QToolButton* makeIconButton(Icon icon, const QString& name, QWidget* parent);

} // namespace Pallisande
