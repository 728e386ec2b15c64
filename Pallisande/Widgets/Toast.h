#pragma once

#include <QWidget>

class QPushButton;
class QTimer;

namespace Pallisande {

class Label;

// A notice at the bottom of `over`, gone after six seconds that don't run while the pointer or the focus is
// on it. The next one takes its place.
class Toast : public QWidget {
    Q_OBJECT

public:
    explicit Toast(QWidget* over);

    void showNotice(const QString& sentence, const QString& button = {});
    QString sentence() const;

signals:
    void acted();
    void ended(); // Its time is over, or it was pressed.

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void dress();
    void place();
    void end();
    void resumeTime();

    Label* m_sentence;
    QWidget* m_icon;
    QPushButton* m_act;
    QTimer* m_time;
};

} // namespace Pallisande
