#pragma once

#include "Pallisande/Widgets/Buttons.h"

#include <QWidget>

class QHBoxLayout;

namespace Pallisande {

class Label;

// What stands where nothing is yet: an icon, a sentence, at most two buttons. Dashed, it takes what is
// dropped.
class EmptyPage : public QWidget {
    Q_OBJECT

public:
    EmptyPage(Icon icon, const QString& sentence, QWidget* parent);

    void setSentence(const QString& sentence);
    void setExplanation(const QString& sentence); // A quieter line below.
    QPushButton* addButton(const QString& text, ButtonKind kind);
    void setDropArea(bool isDropArea);
    void setMarked(bool isMarked); // Something hovers over it that it would take.

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Icon m_icon;
    QWidget* m_iconPlace;
    Label *m_sentence, *m_explanation;
    QHBoxLayout* m_buttons;
    bool m_isDropArea = false, m_isMarked = false;
};

} // namespace Pallisande
