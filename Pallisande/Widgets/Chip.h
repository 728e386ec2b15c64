#pragma once

#include "Pallisande/Widgets/Icons.h"
#include "Pallisande/Widgets/Theme.h"
#include "PallisandeKit/Analyses/Analysis.h"
#include "PallisandeKit/Records/Invoice.h"
#include "PallisandeKit/Records/Job.h"

#include <QMetaType>
#include <QWidget>

namespace Pallisande {

// A state: a shape and a word on a tint, so that it is told without colours too.
struct Chip {
    Tone tone = Tone::grey;
    Icon mark = Icon::circle;
    QString word;

    static Chip of(JobStatus status);
    static Chip of(InvoiceStatus status);
    static Chip of(Verification verification);

    QSize size(const Theme& theme) const;
    void paint(QPainter& painter, const QPointF& topLeft, const Theme& theme) const;

    bool operator==(const Chip&) const = default;
};

class ChipLabel : public QWidget {
    Q_OBJECT

public:
    explicit ChipLabel(const Chip& chip, QWidget* parent = nullptr);

    void setChip(const Chip& chip);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Chip m_chip;
};

} // namespace Pallisande

Q_DECLARE_METATYPE(Pallisande::Chip)
