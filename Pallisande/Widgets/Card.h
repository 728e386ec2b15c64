#pragma once

#include <QWidget>

class QHBoxLayout;
class QVBoxLayout;

namespace Pallisande {

class Label;

// A rounded block of a page: a heading with room for small acts at its right, and the content below.
class Card : public QWidget {
    Q_OBJECT

public:
    explicit Card(QWidget* parent = nullptr);
    Card(const QString& heading, QWidget* parent);

    QVBoxLayout* content() const { return m_content; }
    void addToHeading(QWidget* widget); // At its right.
    void setHeading(const QString& heading);

    // Drop target: an outline and a tint while something hovers over it that it would take.
    void setMarked(bool isMarked);

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void dress();

    Label* m_heading;
    QHBoxLayout* m_head;
    QVBoxLayout* m_content;
    bool m_isMarked = false;
};

} // namespace Pallisande
