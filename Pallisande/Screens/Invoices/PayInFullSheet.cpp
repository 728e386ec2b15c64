#include "Pallisande/Screens/Invoices/PayInFullSheet.h"

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/DateEdit.h"
#include "Pallisande/Widgets/FormLayout.h"
#include "Pallisande/Widgets/SheetDialog.h"

#include <QGridLayout>

namespace Pallisande {

namespace {

constexpr std::size_t mostNamed = 8;

// The numbers and what is still due on each.
QWidget* makeList(AppModel& model, const std::vector<Base::Uuid>& invoices, QWidget* parent)
{
    auto* list = new QWidget(parent);
    auto* grid = new QGridLayout(list);
    grid->setContentsMargins(0, 0, 0, Space::small);
    grid->setVerticalSpacing(Space::tiny);
    grid->setColumnStretch(1, 1);
    int row = 0;
    for (const auto& id : invoices) {
        const auto* const invoice = model.invoice(id);
        if (!invoice)
            continue;
        if (row == static_cast<int>(mostNamed)) {
            grid->addWidget(new Label(QStringLiteral("and %1 more").arg(invoices.size() - mostNamed), list,
                                TextStyle::body, Ink::muted),
                row, 0, 1, 3);
            break;
        }
        grid->addWidget(new Label(qt(invoice->number.value_or("")), list), row, 0);
        grid->addWidget(new ElidedLabel(qt(invoice->client.name), list, TextStyle::body, Ink::muted), row, 1);
        grid->addWidget(
            new Label(
                qt(model.formats().money(model.invoices().stillDue(*invoice), invoice->currency)), list),
            row++, 2, Qt::AlignRight);
    }
    return list;
}

} // namespace

SheetDialog* makePayInFullSheet(AppModel& model, std::vector<Base::Uuid> invoices, QWidget* window)
{
    const auto count = qt(counted(std::ssize(invoices), "Invoice", "Invoices"));
    auto* dialog = new SheetDialog(QStringLiteral("Paid in Full"),
        QStringLiteral("Records a payment of what is still due, with the same date on each."),
        SheetDialog::Width::small, window);
    dialog->setObjectName(QStringLiteral("payInFullSheet"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    const auto today = [&model] { return model.moment().calendar.day(model.moment().now); };
    auto* form = new FormLayout(dialog);
    auto* day = new DateEdit(QLocale::system(), today, form);
    day->setObjectName(QStringLiteral("payDay"));
    day->setValue(today());
    form->addRow(QStringLiteral("Date"), day);
    dialog->content()->addWidget(makeList(model, invoices, dialog));
    dialog->content()->addWidget(form);
    dialog->setFirstField(day);
    dialog->setDefault(
        QStringLiteral("Mark %1 Paid").arg(count), [&model, invoices = std::move(invoices), day] {
            if (!day->value())
                return QStringLiteral("Type the day that the money arrived.");
            if (model.invoices().payInFull(invoices, model.services().calendar.noon(*day->value())))
                return QString();
            return model.problem() ? qt(model.problem()->text)
                                   : QStringLiteral("The payments couldn’t be recorded.");
        });
    return dialog;
}

} // namespace Pallisande
