#pragma once

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Widgets/SheetDialog.h"

#include <QPointer>

namespace Pallisande {

// Keeps the dialog on show and the model's sheet in step.
class SheetHost : public QObject {
    Q_OBJECT

public:
    SheetHost(AppModel& model, QWidget* window);

    SheetDialog* dialog() const { return m_dialog; }

private:
    void follow();

    AppModel& m_model;
    QWidget* m_window;
    QPointer<SheetDialog> m_dialog;
    std::optional<Sheet> m_shown;
};

} // namespace Pallisande
