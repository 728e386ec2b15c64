#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Preview/PagePreview.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Sheets/Sheets.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/DateEdit.h"
#include "Pallisande/Widgets/FormLayout.h"
#include "Pallisande/Widgets/NumberEdit.h"
#include "Printing/PrintingError.h"

#include <QBoxLayout>
#include <QPushButton>

namespace Pallisande {

namespace {

const QString sentence = QStringLiteral(
    "A draft has no number and can be changed or deleted. Issuing gives it the next number in the series, "
    "stores its PDF in the library folder exactly as issued, and locks it for good.");

// The draft as it would be issued on a day, and the one button that can't be taken back. It can be pressed
// only when what will be stored was on show.
class IssueDialog : public SheetDialog {
public:
    IssueDialog(AppModel& model, const Base::Uuid& id, const QString& title, QWidget* window)
        : SheetDialog(title, sentence, Width::medium, window)
        , m_model(model)
        , m_id(id)
        , m_isInvoice(model.invoice(id) && model.invoice(id)->kind == DocumentKind::invoice)
    {
        setObjectName(QStringLiteral("issueSheet"));
        makeFields();
        m_issue = setDefault(
            QStringLiteral("Issue"), [this] { return issue(); }, Return::onlyCommits);
        m_issue->setObjectName(QStringLiteral("issue"));
        setFirstField(m_day);
        const auto* const draft = m_model.invoice(m_id);
        const auto& calendar = m_model.services().calendar;
        m_day->setValue(calendar.day(draft && draft->issueDate ? *draft->issueDate : m_model.moment().now));
        m_hasOwnDue = draft && draft->dueDate;

        connect(m_day, &LineField::committed, this, [this] {
            showError({});
            refresh();
        });
        connect(m_due, &LineField::committed, this, [this] {
            m_hasOwnDue = true;
            refresh();
        });
        connect(m_rate, &LineField::committed, this, &IssueDialog::refresh);
        connect(m_preview, &PagePreview::drawn, this, &IssueDialog::refresh);
        connect(&m_model, &AppModel::libraryChanged, this, &IssueDialog::refresh);
        connect(&m_model, &AppModel::issuingChanged, this, &IssueDialog::issuingChanged);
        connect(&m_model, &AppModel::sheetChanged, this, [this] {
            if (!isMine() && isVisible())
                QDialog::accept();
        });
        connect(this, &QDialog::rejected, this, [this] {
            if (isMine())
                m_model.closeSheet();
        });
        refresh();
    }

    // Pressed, it goes on until the PDF is drawn and stored; the model closes the sheet then.
    void accept() override { }
    void reject() override
    {
        if (!m_model.invoices().isIssuing())
            SheetDialog::reject();
    }

private:
    void makeFields()
    {
        auto* row = new QHBoxLayout;
        row->setSpacing(Space::group);
        auto* left = new QVBoxLayout;
        left->setSpacing(Space::medium);
        auto* form = new FormLayout(this);
        const auto today = [this] { return m_model.moment().calendar.day(m_model.moment().now); };
        m_number = new Label(form, TextStyle::bodyStrong);
        m_number->setObjectName(QStringLiteral("issueNumber"));
        m_number->setWordWrap(true);
        m_day = new DateEdit(QLocale::system(), today, form);
        m_day->setObjectName(QStringLiteral("issueDay"));
        m_due = new DateEdit(QLocale::system(), today, form);
        m_due->setObjectName(QStringLiteral("dueDay"));
        m_total = new Label(form, TextStyle::bodyStrong);
        m_rate = new DecimalEdit(QLocale::system(), form);
        m_rate->setObjectName(QStringLiteral("issueRate"));
        m_rate->setOptional(true);
        m_rate->setWidthInCharacters(12);
        m_rate->setCheck([](const Base::Decimal& rate) {
            return rate <= Base::Decimal() ? QStringLiteral("A rate must be more than zero.") : QString();
        });
        m_rateText = makeSentence({}, form, TextStyle::small, Ink::muted);
        m_rateText->setObjectName(QStringLiteral("issueRateText"));
        form->addRow(QStringLiteral("Number"), m_number, FormLayout::Width::stretching);
        form->addRow(QStringLiteral("Issue date"), m_day);
        form->addRow(QStringLiteral("Due date"), m_due);
        form->setRowVisible(m_due, m_isInvoice);
        form->addRow(QStringLiteral("Total"), m_total, FormLayout::Width::stretching);
        form->addRow(QStringLiteral("Exchange rate"), m_rate);
        form->addBelow(m_rateText);
        m_form = form;
        m_warnings = makeSentence({}, this, TextStyle::body, Ink::amber);
        m_warnings->setObjectName(QStringLiteral("issueWarnings"));
        left->addWidget(form);
        left->addWidget(m_warnings);
        left->addStretch();
        m_preview = new PagePreview(m_model, this);
        m_preview->setMinimumSize(200, 300);
        row->addLayout(left, 3);
        row->addWidget(m_preview, 2);
        content()->addLayout(row);
    }

    bool isMine() const
    {
        const auto* const sheet = m_model.sheet() ? std::get_if<IssueSheet>(&*m_model.sheet()) : nullptr;
        return sheet && sheet->invoiceID == m_id;
    }
    Base::Instant issueDate() const { return m_model.services().calendar.noon(*m_day->value()); }
    std::optional<Base::Instant> ownDue() const
    {
        return m_hasOwnDue && m_due->value()
            ? std::optional(m_model.services().calendar.noon(*m_due->value()))
            : std::nullopt;
    }

    void refresh()
    {
        const auto* const draft = m_model.invoice(m_id);
        if (!draft || draft->isIssued() || !isMine())
            return;
        auto& invoices = m_model.invoices();
        const auto& calendar = m_model.services().calendar;
        if (!m_hasOwnDue || !m_due->value())
            m_due->setValue(calendar.day(invoices.dueDate(*draft, issueDate())));
        const auto due = calendar.noon(*m_due->value());
        const auto outlook = invoices.outlook(m_id, issueDate(), due);
        m_number->setText(outlook.number.empty() ? QStringLiteral("–") : qt(outlook.number));
        m_total->setText(qt(outlook.total));
        showRate(*draft, outlook);
        QStringList warnings;
        for (const auto& warning : outlook.warnings)
            warnings += qt(warning);
        m_warnings->setText(warnings.join(QLatin1Char('\n')));
        m_warnings->setVisible(!warnings.isEmpty());
        m_preview->showDocument(
            m_id.toString(), invoices.documentToIssue(*draft, issueDate(), due), PagePreview::Mark::none);
        showButton(outlook);
    }

    void showRate(const Invoice& draft, const IssueOutlook& outlook)
    {
        const bool isForeign = !outlook.rate.empty();
        m_form->setRowVisible(m_rate, isForeign);
        m_rateText->setVisible(isForeign);
        m_rateText->setText(qt(outlook.rate));
        m_rate->setPlaceholderText(
            QStringLiteral("1 %1 in %2").arg(qt(draft.currency), qt(m_model.library().profile.homeCurrency)));
        m_rate->setAccessibleDescription(qt(outlook.rate));
    }

    void showButton(const IssueOutlook& outlook)
    {
        const bool isIssuing = m_model.invoices().isIssuing();
        QString refusal = qt(outlook.refusal);
        if (refusal.isEmpty() && m_preview->isDrawn()) {
            if (!m_preview->failure().empty())
                refusal = qt(m_preview->failure());
            else if (!m_preview->missingCharacters().empty())
                refusal = qt(PrintingError::missingCharacters(m_preview->missingCharacters()).what());
        }
        if (m_model.folderWasNotFound())
            refusal = QStringLiteral(
                "Confirm the library folder in use first: documents are issued into it for good.");
        if (refusal != m_refusal && (!refusal.isEmpty() || error() == m_refusal))
            showError(refusal);
        m_refusal = refusal;
        m_issue->setText(isIssuing       ? QStringLiteral("Issuing…")
                : outlook.number.empty() ? QStringLiteral("Issue")
                                         : QStringLiteral("Issue %1").arg(qt(outlook.number)));
        m_issue->setEnabled(!isIssuing && refusal.isEmpty() && m_preview->isDrawn() && m_model.canEdit());
        m_issue->setToolTip(m_issue->isEnabled() || isIssuing || !refusal.isEmpty()
                ? QString()
                : QStringLiteral("The preview is being drawn."));
        cancelButton()->setEnabled(!isIssuing);
    }

    QString issue()
    {
        const auto* const draft = m_model.invoice(m_id);
        if (!draft || !m_issue->isEnabled())
            return {};
        for (const auto* field : { static_cast<LineField*>(m_day), static_cast<LineField*>(m_due),
                 static_cast<LineField*>(m_rate) }) {
            if (field->isVisible() && !field->problem().isEmpty())
                return field->problem();
        }
        const auto day = issueDate();
        if (m_rate->isVisible() && m_rate->value()) { // Typed here, it is a rate like any other.
            const TypedRateSheet rate { draft->currency, m_model.library().profile.homeCurrency, day,
                std::nullopt };
            if (!m_model.invoices().typeRate(rate, *m_rate->value(), {}))
                return m_model.problem() ? qt(m_model.problem()->text) : QString();
            m_rate->setValue(std::nullopt);
        }
        m_model.dismissProblem();
        m_model.invoices().issue(m_id, day, ownDue());
        return isMine() && !m_model.invoices().isIssuing() && m_model.problem() ? qt(m_model.problem()->text)
                                                                                : QString();
    }

    void issuingChanged()
    {
        if (!isMine())
            return;
        refresh();
        if (!m_model.invoices().isIssuing() && m_model.problem())
            showError(qt(m_model.problem()->text));
    }

    AppModel& m_model;
    Base::Uuid m_id;
    bool m_isInvoice, m_hasOwnDue = false;
    FormLayout* m_form = nullptr;
    Label *m_number = nullptr, *m_total = nullptr, *m_rateText = nullptr, *m_warnings = nullptr;
    DateEdit *m_day = nullptr, *m_due = nullptr;
    DecimalEdit* m_rate = nullptr;
    PagePreview* m_preview = nullptr;
    QPushButton* m_issue = nullptr;
    QString m_refusal;
};

} // namespace

SheetDialog* makeSheet(AppModel& model, const IssueSheet& sheet, QWidget* window)
{
    const auto* const draft = model.invoice(sheet.invoiceID);
    const bool isNote = draft && draft->kind == DocumentKind::creditNote;
    return new IssueDialog(model, sheet.invoiceID,
        isNote ? QStringLiteral("Issue Credit Note") : QStringLiteral("Issue Invoice"), window);
}

} // namespace Pallisande
