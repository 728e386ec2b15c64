#pragma once

#include "Pallisande/Widgets/Theme.h"

#include <QLabel>

namespace Pallisande {

// Text in a style and an ink of the theme, which it follows.
class Label : public QLabel {
    Q_OBJECT

public:
    explicit Label(QWidget* parent, TextStyle style = TextStyle::body, Ink ink = Ink::text);
    Label(const QString& text, QWidget* parent, TextStyle style = TextStyle::body, Ink ink = Ink::text);

    void setInk(Ink ink);
    void setStyle(TextStyle style);

protected:
    bool focusNextPrevChild(bool next) override;
    void changeEvent(QEvent* event) override;

private:
    void dress();

    TextStyle m_style;
    Ink m_ink;
};

// A label that may have any number of lines.
Label* makeSentence(
    const QString& text, QWidget* parent, TextStyle style = TextStyle::body, Ink ink = Ink::text);

// One line, elided in the middle; the whole text is its tooltip then.
class ElidedLabel : public Label {
    Q_OBJECT

public:
    using Label::Label;

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
};

// What a screen reader says without the focus moving: a failed entry, a banner, a toast.
void announce(QWidget* about, const QString& sentence);

} // namespace Pallisande
