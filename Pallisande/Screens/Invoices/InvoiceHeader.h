#pragma once

#include "Base/Uuid.h"
#include "Pallisande/Screens/SectionPage.h"

#include <optional>

class QGridLayout;
class QHBoxLayout;
class QPushButton;
class QToolButton;

namespace Pallisande {

class ChipLabel;
class Label;
class NoteLine;

// What the document is, how it stands, and what can be done with it next: one primary button, the rest quiet
// or behind ⋯. Over the whole width of the detail, above cards and preview.
class InvoiceHeader : public QWidget {
    Q_OBJECT

public:
    InvoiceHeader(const ScreenServices& services, QWidget* parent);

    void show(const Base::Uuid& id);
    void refresh();

    QSize minimumSizeHint() const override; // Its buttons take as many lines as they need.

protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    QPushButton* makeActionButton(Command command, const QString& text);
    void refreshButtons(const Invoice& invoice);
    void refreshSelection();
    void arrange();
    int widthOfOneLine() const;

    ScreenServices m_services;
    std::optional<Base::Uuid> m_id;
    QGridLayout* m_grid;
    NoteLine* m_several;
    Label* m_title;
    ChipLabel* m_chip;
    QWidget* m_buttons;
    QPushButton *m_issue, *m_save, *m_pay, *m_open;
    QToolButton* m_more;
    QPushButton* m_client;
    QHBoxLayout* m_below; // Client and state.
    Label* m_state;
    QString m_stateText;
    int m_needed = 0; // Of width, for title and buttons beside each other.
};

} // namespace Pallisande
