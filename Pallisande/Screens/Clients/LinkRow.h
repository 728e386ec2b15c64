#pragma once

#include "Pallisande/Widgets/Chip.h"

#include <QAbstractButton>

namespace Pallisande {

// One line about a record elsewhere, which leads there.
class LinkRow : public QAbstractButton {
    Q_OBJECT

public:
    explicit LinkRow(QWidget* parent);

    struct Content {
        QString title, detail, figure;
        Chip chip;
        QString spoken;
        bool operator==(const Content&) const = default;
    };
    void setContent(const Content& content);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return { 160, sizeHint().height() }; }

protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override; // Return follows it, too.

private:
    Content m_content;
};

} // namespace Pallisande
