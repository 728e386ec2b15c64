#pragma once

#include "Pallisande/Widgets/Icons.h"
#include "Pallisande/Widgets/Theme.h"

#include <QWidget>

#include <functional>
#include <optional>
#include <vector>

class QPushButton;

namespace Pallisande {

class Label;

// A sentence behind a sign, which alone has the colour, and what can be done about it: a link that ends it,
// or a button below it. Both wrap. It may have a surface of its own.
class NoteLine : public QWidget {
    Q_OBJECT

public:
    explicit NoteLine(QWidget* parent);
    NoteLine(Icon icon, Tone tone, const QString& sentence, QWidget* parent);

    void show(Icon icon, Tone tone, const QString& sentence, const QString& link = {});
    void setSentence(const QString& sentence); // Empty hides it.
    QString sentence() const { return m_sentence; }
    void setTinted(bool isTinted); // On a surface of its tone.
    QPushButton* addButton(const QString& text);
    QPushButton* button() const { return m_button; } // Null before it was added.

signals:
    void followed();

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void dress();

    Label* m_text;
    QPushButton* m_button = nullptr;
    Icon m_icon = Icon::info;
    Tone m_tone = Tone::grey;
    bool m_isTinted = false;
    QString m_sentence, m_link;
};

// As many of them as there is to say; lines stay where what they say does.
class NoteList : public QWidget {
    Q_OBJECT

public:
    struct Note {
        Icon icon = Icon::info;
        Tone tone = Tone::grey;
        QString sentence;
        QString link;
        std::function<void()> follow;
    };

    explicit NoteList(QWidget* parent);

    void setNotes(std::vector<Note> notes); // Hidden while there is none.

private:
    std::vector<Note> m_notes;
    std::vector<NoteLine*> m_lines;
};

// The text of a label that ends in a link, or is one.
QString linkText(const QString& before, const QString& link);

} // namespace Pallisande
