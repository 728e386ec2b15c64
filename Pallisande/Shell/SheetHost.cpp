#include "Pallisande/Shell/SheetHost.h"

#include "Pallisande/Sheets/Sheets.h"

#include <utility>

namespace Pallisande {

SheetHost::SheetHost(AppModel& model, QWidget* window)
    : QObject(window)
    , m_model(model)
    , m_window(window)
{
    connect(&model, &AppModel::sheetChanged, this, &SheetHost::follow);
}

void SheetHost::follow()
{
    const auto& sheet = m_model.sheet();
    if (m_dialog && sheet == m_shown)
        return;
    if (auto* const old = std::exchange(m_dialog, nullptr).data())
        old->done(QDialog::Accepted);
    m_shown = sheet;
    if (!sheet)
        return;
    auto* const dialog
        = std::visit([&](const auto& kind) { return makeSheet(m_model, kind, m_window); }, *sheet);
    m_dialog = dialog;
    connect(dialog, &QDialog::finished, this, [this, dialog] {
        dialog->deleteLater();
        if (m_dialog != dialog) // The model has closed it, and may have opened another.
            return;
        m_dialog = nullptr;
        m_shown.reset();
        m_model.closeSheet();
    });
    dialog->openSheet();
}

} // namespace Pallisande
