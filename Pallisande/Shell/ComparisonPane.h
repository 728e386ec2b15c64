#pragma once

#include "Pallisande/Model/LibraryCopies.h"

#include <QScrollArea>

namespace Pallisande {

class Card;
class Label;

// What restoring a copy would change: kinds of records at the left, what differs in them beside it. It has
// the focus as a whole, so that it can be scrolled and read out.
class ComparisonPane : public QScrollArea {
    Q_OBJECT

public:
    explicit ComparisonPane(QWidget* parent);

    void showSentence(const QString& sentence); // In the place of a comparison.
    void show(const LibraryCopies::Comparison& comparison);
    using QScrollArea::show;

private:
    void clear();

    Card* m_card;
    Label* m_sentence;
    QWidget* m_table = nullptr;
};

} // namespace Pallisande
