#pragma once

#include <QDialog>
#include <QPointer>

#include <functional>

class QHBoxLayout;
class QPushButton;
class QVBoxLayout;

namespace Pallisande {

class Label;

// The frame of a sheet: title, one explaining sentence, content that scrolls when it is long, what went
// wrong, and the buttons. Return presses the default button, unless that can't be undone: then the button
// itself must be clicked or have the focus. Esc is Cancel, and what the fields hold is committed first, so
// that the opener can keep it for the next time.
class SheetDialog : public QDialog {
    Q_OBJECT

public:
    enum class Width { small = 420, medium = 640, large = 880 };
    enum class Return { pressesDefault, onlyCommits };

    SheetDialog(const QString& title, const QString& sentence, Width width, QWidget* parent);

    QVBoxLayout* content() const { return m_content; }
    QPushButton* cancelButton() const { return m_cancel; }
    // The primary button at the bottom right. `act` does it: an empty answer closes the sheet as accepted,
    // a sentence says why it couldn't be done and stays above the buttons.
    QPushButton* setDefault(
        const QString& text, std::function<QString()> act, Return atReturn = Return::pressesDefault);
    void addAside(QWidget* button); // Bottom left: what is secondary or destructive.
    void setFirstField(QWidget* field) { m_first = field; }
    void setSentence(const QString& sentence);

    void showError(const QString& sentence); // Announced; empty: none.
    QString error() const;

    void openSheet(); // Window-modal; the focus comes back to the opener afterwards.
    void done(int result) override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void dress();
    void fit();
    void act();

    class SheetScroll* m_scroll;
    Label *m_title, *m_sentence, *m_error;
    QWidget* m_errorLine;
    QVBoxLayout* m_content;
    QHBoxLayout *m_aside, *m_buttons;
    QPushButton* m_cancel;
    QPushButton* m_default = nullptr;
    std::function<QString()> m_act;
    Return m_atReturn = Return::pressesDefault;
    Width m_width;
    QPointer<QWidget> m_first, m_opener;
};

} // namespace Pallisande
