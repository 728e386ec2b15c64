#pragma once

#include <QWidget>

class QLabel;
class QPushButton;
class QToolButton;

namespace Pallisande {

class Label;

// A problem that stays until it is solved or dismissed: one sentence, at most one button. It takes no focus;
// Esc inside it dismisses.
class Banner : public QWidget {
    Q_OBJECT

public:
    explicit Banner(QWidget* parent = nullptr);

    // Hidden while there is no sentence; announced when it is another.
    void showProblem(const QString& sentence, const QString& button = {});
    void hideProblem();
    QString sentence() const;

signals:
    void acted();
    void dismissed();

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void dress();

    QWidget* m_icon; // The room that the icon is painted in.
    Label* m_sentence;
    QPushButton* m_act;
    QToolButton* m_dismiss;
};

} // namespace Pallisande
