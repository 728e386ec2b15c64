#include "Pallisande/Widgets/CodeBox.h"

namespace Pallisande {

CodeBox::CodeBox(const Choices& choices, QWidget* parent)
    : ComboBox(parent)
{
    setSearchable(true);
    for (const auto& [code, text] : choices)
        addItem(text, code);
    setCurrentIndex(-1);
    connect(this, &QComboBox::activated, this, [this](int row) {
        const auto code = itemData(row).toString();
        if (std::exchange(m_code, code) != code)
            emit chosen(code);
    });
}

void CodeBox::setCode(const QString& code)
{
    m_code = code;
    if (currentData().toString() == code && currentIndex() >= 0)
        return;
    if (m_hasForeign)
        removeItem(0);
    m_hasForeign = findData(code) < 0;
    if (m_hasForeign)
        insertItem(0, code, code);
    setCurrentIndex(findData(code));
}

} // namespace Pallisande
