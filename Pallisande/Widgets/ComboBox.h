#pragma once

#include <QComboBox>

namespace Pallisande {

// A choice that the wheel doesn’t change while the page scrolls under it. Long lists (currencies, zones,
// clients) open with a search field: every word typed must be found somewhere in a choice.
class ComboBox : public QComboBox {
    Q_OBJECT

public:
    explicit ComboBox(QWidget* parent = nullptr);

    void setSearchable(bool isSearchable) { m_isSearchable = isSearchable; }
    void showPopup() override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void showSearch(const QString& typed);

    bool m_isSearchable = false;
};

// Lower case, without accents, in half width: what searches compare.
QString searchForm(const QString& text);

} // namespace Pallisande
