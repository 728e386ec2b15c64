#pragma once

#include <QLayout>

#include <memory>
#include <vector>

namespace Pallisande {

// Widgets in lines, each as wide as it likes; what doesn't fit goes on in the next line.
class FlowLayout : public QLayout {
    Q_OBJECT

public:
    explicit FlowLayout(QWidget* parent = nullptr);
    ~FlowLayout() override;

    // The edge that lines begin at, or end at.
    void setSide(Qt::AlignmentFlag side) { m_side = side; }

    void addItem(QLayoutItem* item) override;
    int count() const override { return static_cast<int>(m_items.size()); }
    QLayoutItem* itemAt(int place) const override;
    QLayoutItem* takeAt(int place) override;
    Qt::Orientations expandingDirections() const override { return {}; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override { return arrange(QRect(0, 0, width, 0), false); }
    QSize sizeHint() const override;
    QSize minimumSize() const override;
    void setGeometry(const QRect& area) override;

private:
    int arrange(const QRect& area, bool moves) const; // The height that it takes.

    std::vector<std::unique_ptr<QLayoutItem>> m_items;
    Qt::AlignmentFlag m_side = Qt::AlignLeft;
};

} // namespace Pallisande
