#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Sheets/SheetMemory.h"
#include "Pallisande/Sheets/Sheets.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/DateEdit.h"
#include "Pallisande/Widgets/FormLayout.h"
#include "Pallisande/Widgets/NumberEdit.h"

#include <QBoxLayout>
#include <QPushButton>

namespace Pallisande {

namespace {

constexpr int ratePlaces = 6;

struct KeptRate {
    std::optional<Base::Decimal> rate;
    QString note;
};

class TypedRateDialog : public SheetDialog {
public:
    TypedRateDialog(AppModel& model, const TypedRateSheet& sheet, QWidget* window)
        : SheetDialog(QStringLiteral("Type a Rate"),
            QStringLiteral(
                "Your bank’s rate, or the one your tax authority asks for. A typed rate is used over "
                "the ECB’s for the same day."),
            Width::small, window)
        , m_model(model)
        , m_sheet(sheet)
    {
        setObjectName(QStringLiteral("typedRateSheet"));
        makeFields();
        m_add = setDefault(QStringLiteral("Add Rate"), [this] { return add(); });
        setFirstField(m_rate);
        if (const auto* const kept = SheetMemory::of(model).find<KeptRate>(keptFor())) {
            m_rate->setValue(kept->rate);
            m_note->setValue(kept->note);
        }
        connect(m_rate, &LineField::committed, this, &TypedRateDialog::refresh);
        connect(m_day, &LineField::committed, this, &TypedRateDialog::refresh);
        connect(m_swap, &QPushButton::clicked, this, [this] {
            m_rate->setValue(Base::Decimal(1).dividedBy(*m_rate->value(), ratePlaces));
            refresh();
        });
        connect(&m_model, &AppModel::sheetChanged, this, [this] {
            if (m_model.sheet() != Sheet(m_sheet) && isVisible())
                accept();
        });
        connect(this, &QDialog::rejected, this, [this] {
            SheetMemory::of(m_model).keep(keptFor(), KeptRate { m_rate->value(), m_note->value() });
            if (m_model.sheet() == Sheet(m_sheet))
                m_model.closeSheet();
        });
        refresh();
    }

private:
    Base::Uuid keptFor() const { return m_sheet.invoiceID.value_or(Base::Uuid {}); }

    void makeFields()
    {
        auto* form = new FormLayout(this);
        auto* from = new Label(qt(m_sheet.from), form, TextStyle::bodyStrong);
        auto* to = new Label(qt(m_sheet.to), form, TextStyle::bodyStrong);
        m_rate = new DecimalEdit(QLocale::system(), form);
        m_rate->setOptional(true); // Nothing typed yet is no mistake.
        m_rate->setWidthInCharacters(14);
        m_rate->setPlaceholderText(QStringLiteral("1 %1 in %2").arg(qt(m_sheet.from), qt(m_sheet.to)));
        m_rate->setCheck([](const Base::Decimal& rate) {
            return rate <= Base::Decimal() ? QStringLiteral("A rate must be more than zero.") : QString();
        });
        m_day = new DateEdit(
            QLocale::system(), [this] { return m_model.moment().calendar.day(m_model.moment().now); }, form);
        m_day->setValue(m_model.services().calendar.day(m_sheet.day));
        m_note = new TextField(form);
        m_note->setPlaceholderText(QStringLiteral("Where it comes from"));
        m_rate->setObjectName(QStringLiteral("rate"));
        m_day->setObjectName(QStringLiteral("rateDay"));
        m_note->setObjectName(QStringLiteral("rateNote"));
        m_both = makeSentence({}, form, TextStyle::small, Ink::muted);
        m_both->setObjectName(QStringLiteral("rateBothWays"));
        form->addRow(QStringLiteral("From"), from);
        form->addRow(QStringLiteral("To"), to);
        form->addRow(QStringLiteral("Rate"), m_rate);
        form->addBelow(m_both);
        form->addRow(QStringLiteral("Day"), m_day);
        form->addRow(QStringLiteral("Note"), m_note, FormLayout::Width::stretching);
        content()->addWidget(form);
        m_doubt = makeSentence({}, this, TextStyle::body, Ink::amber);
        m_doubt->setObjectName(QStringLiteral("rateDoubt"));
        m_swap = makeButton(QStringLiteral("Swap"), ButtonKind::plain, this);
        m_swap->setObjectName(QStringLiteral("swap"));
        auto* doubt = new QHBoxLayout;
        doubt->setSpacing(Space::medium);
        doubt->addWidget(m_doubt, 1);
        doubt->addWidget(m_swap, 0, Qt::AlignTop);
        content()->addLayout(doubt);
    }

    Base::Instant day() const
    {
        return m_day->value() ? m_model.services().calendar.noon(*m_day->value()) : m_sheet.day;
    }

    void refresh()
    {
        const auto rate = m_rate->value();
        const auto& formats = m_model.formats();
        const auto bank = m_model.invoices().ecbRate(m_sheet.from, m_sheet.to, day());
        QStringList lines;
        if (rate)
            lines += QStringLiteral("1 %1 = %2 %3, 1 %3 = %4 %1")
                         .arg(qt(m_sheet.from), qt(formats.rate(*rate)), qt(m_sheet.to),
                             qt(formats.rate(Base::Decimal(1).dividedBy(*rate, ratePlaces))));
        if (bank)
            lines += QStringLiteral("The ECB’s rate of that day is %1.").arg(qt(formats.exchangeRate(*bank)));
        m_both->setText(lines.join(QLatin1Char('\n')));
        m_both->setVisible(!lines.isEmpty());
        // A fifth off in either direction is more than markets move between a bank and the ECB.
        const bool isFar = rate && bank && (*rate * 5 > *bank * 6 || *rate * 5 < *bank * 4);
        m_doubt->setText(isFar
                ? QStringLiteral("This is far from the ECB’s %1. Check that the direction is right.")
                      .arg(qt(formats.exchangeRate(*bank)))
                : QString());
        m_doubt->setVisible(isFar);
        m_swap->setVisible(isFar);
        m_add->setEnabled(m_sheet.from != m_sheet.to);
        showError(
            m_sheet.from == m_sheet.to ? QStringLiteral("Choose two different currencies.") : QString());
    }

    QString add()
    {
        if (!m_rate->problem().isEmpty() || !m_day->problem().isEmpty())
            return m_rate->problem().isEmpty() ? m_day->problem() : m_rate->problem();
        if (!m_rate->value())
            return QStringLiteral("Type the rate first.");
        auto rate = m_sheet;
        rate.day = day();
        if (!m_model.invoices().typeRate(rate, *m_rate->value(), plain(m_note->value())))
            return m_model.problem() ? qt(m_model.problem()->text)
                                     : QStringLiteral("The rate couldn’t be added.");
        SheetMemory::of(m_model).forget<KeptRate>(keptFor());
        return {};
    }

    AppModel& m_model;
    TypedRateSheet m_sheet;
    DecimalEdit* m_rate = nullptr;
    DateEdit* m_day = nullptr;
    TextField* m_note = nullptr;
    Label *m_both = nullptr, *m_doubt = nullptr;
    QPushButton *m_swap = nullptr, *m_add = nullptr;
};

} // namespace

SheetDialog* makeSheet(AppModel& model, const TypedRateSheet& sheet, QWidget* window)
{
    return new TypedRateDialog(model, sheet, window);
}

} // namespace Pallisande
