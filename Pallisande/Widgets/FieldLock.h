#pragma once

#include <QAbstractButton>
#include <QString>

namespace Pallisande {

// Takes part in locking its page, as fields and check boxes always do.
void marksChange(QAbstractButton* button);

// Makes the fields of a page readable only, or lets them be changed again. The reason is the tooltip of what
// is locked; nothing that was typed before is lost.
void setLocked(QWidget& page, bool isLocked, const QString& reason);

} // namespace Pallisande
