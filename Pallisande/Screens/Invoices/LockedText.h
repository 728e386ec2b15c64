#pragma once

#include "Pallisande/Widgets/Label.h"

#include "Base/Uuid.h"

namespace Pallisande {

class AppModel;

// What can't be changed any more looks like text, not like a field that is switched off. It can be selected
// and copied; a click or a key says why nothing more can be done with it.
class LockedText : public Label {
    Q_OBJECT

public:
    explicit LockedText(QWidget* parent);

signals:
    void touched();

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void dress();
};

// The sentence on an issued document, with [Make Credit Note] where one can be made.
void explainLock(AppModel& model, const Base::Uuid& invoiceID, QWidget* at);

} // namespace Pallisande
