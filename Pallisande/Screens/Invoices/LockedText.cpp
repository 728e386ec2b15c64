#include "Pallisande/Screens/Invoices/LockedText.h"

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/Popup.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QVBoxLayout>

namespace Pallisande {

LockedText::LockedText(QWidget* parent)
    : Label(parent)
{
    setWordWrap(true);
    setTextFormat(Qt::PlainText);
    setTextInteractionFlags(Qt::TextSelectableByMouse);
    setFocusPolicy(Qt::StrongFocus);
    setAlignment(Qt::AlignLeft | Qt::AlignTop);
    dress();
}

void LockedText::mouseReleaseEvent(QMouseEvent* event)
{
    Label::mouseReleaseEvent(event);
    if (event->button() == Qt::LeftButton && !hasSelectedText())
        emit touched();
}

void LockedText::keyPressEvent(QKeyEvent* event)
{
    const bool edits = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter
        || event->key() == Qt::Key_Backspace || event->key() == Qt::Key_Delete
        || (!event->text().isEmpty() && event->text().front().isPrint()
            && !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier)));
    if (edits)
        emit touched();
    else
        Label::keyPressEvent(event);
}

void LockedText::changeEvent(QEvent* event)
{
    Label::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        dress();
}

// Its first line stands at the height of a field’s, beside the label.
void LockedText::dress()
{
    const auto& theme = Theme::of(this);
    const int room = theme.controlHeight() - QFontMetrics(theme.font(TextStyle::body)).height();
    setContentsMargins(0, std::max(0, room / 2), 0, std::max(0, room - room / 2));
}

void explainLock(AppModel& model, const Base::Uuid& invoiceID, QWidget* at)
{
    const auto* const invoice = model.invoice(invoiceID);
    if (!invoice || !invoice->isIssued())
        return;
    auto* popup = new Popup(at->window());
    popup->setObjectName(QStringLiteral("lockedPopup"));
    auto* sentence = makeSentence(qt(LedgerError::locked(*invoice->number).what()), popup);
    sentence->setFixedWidth(Theme::of(at).scaled(300));
    popup->content()->setContentsMargins(Space::medium, Space::medium, Space::medium, Space::small);
    popup->content()->addWidget(sentence);
    const bool canBeCredited = invoice->kind == DocumentKind::invoice && model.canEdit()
        && model.invoices().status(*invoice) != InvoiceStatus::credited;
    if (canBeCredited) {
        auto* credit = makeButton(QStringLiteral("Make Credit Note"), ButtonKind::plain, popup);
        credit->setObjectName(QStringLiteral("makeCreditNote"));
        popup->content()->addWidget(credit, 0, Qt::AlignRight);
        QObject::connect(credit, &QPushButton::clicked, popup, [&model, invoiceID, popup] {
            popup->close();
            model.invoices().makeCreditNote(invoiceID);
        });
    }
    popup->showBelow(at);
    announce(sentence, sentence->text());
}

} // namespace Pallisande
