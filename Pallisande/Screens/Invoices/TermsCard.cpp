#include "Pallisande/Screens/Invoices/TermsCard.h"

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Screens/Invoices/LockedText.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/DateEdit.h"
#include "Pallisande/Widgets/FormLayout.h"
#include "Pallisande/Widgets/NoteLine.h"
#include "Pallisande/Widgets/NumberEdit.h"
#include "Pallisande/Widgets/TextArea.h"

#include <QPushButton>
#include <QVBoxLayout>

namespace Pallisande {

namespace {

constexpr int leastAreaWidth = 160; // A preview may leave little room.

} // namespace

DocumentCard::DocumentCard(const QString& heading, AppModel& model, QWidget* parent)
    : Card(heading, parent)
    , m_model(model)
    , m_texts(new FormLayout(this))
    , m_fields(new FormLayout(this))
{
    content()->addWidget(m_texts);
    content()->addWidget(m_fields);
}

void DocumentCard::addRow(const QString& label, QWidget* field, Scope scope,
    std::function<void(const Invoice&)> fill, std::function<std::string(const Invoice&)> words)
{
    const auto name = QString(label).remove(QLatin1Char('&'));
    const bool isArea = qobject_cast<TextArea*>(field);
    auto* text = new LockedText(this);
    m_fields->addRow(label, field,
        isArea || qobject_cast<TextField*>(field) ? FormLayout::Width::stretching
                                                  : FormLayout::Width::natural);
    m_texts->addRow(QString(name).remove(QStringLiteral(" %")), text, FormLayout::Width::stretching);
    field->setObjectName(name);
    text->setObjectName(name + QStringLiteral(" text"));
    connect(text, &LockedText::touched, this, [this, text] {
        if (m_id)
            explainLock(m_model, *m_id, text);
    });
    m_rows.push_back({ field, text, scope, std::move(fill), std::move(words) });
}

void DocumentCard::addText(const QString& label, Scope scope, Text text)
{
    auto* field = new TextField(this);
    const auto read = [text](const Invoice& invoice) { return text(const_cast<Invoice&>(invoice)); };
    connect(field, &LineField::committed, this, [this, label, field, text] {
        edit(label, [&](Invoice& invoice) { text(invoice) = plain(field->value()); });
    });
    addRow(
        label, field, scope, [field, read](const Invoice& invoice) { field->setValue(qt(read(invoice))); },
        read);
}

void DocumentCard::addArea(const QString& label, Scope scope, Text text)
{
    auto* field = new TextArea(this);
    field->setMinimumWidth(leastAreaWidth);
    const auto read = [text](const Invoice& invoice) { return text(const_cast<Invoice&>(invoice)); };
    connect(field, &TextArea::committed, this, [this, label, field, text] {
        edit(label, [&](Invoice& invoice) { text(invoice) = plain(field->value()); });
    });
    addRow(
        label, field, scope, [field, read](const Invoice& invoice) { field->setValue(qt(read(invoice))); },
        read);
}

void DocumentCard::hideLastWhenLocked()
{
    m_rows.back().words = [](const Invoice&) { return std::string(); };
}

void DocumentCard::edit(const QString& label, const std::function<void(Invoice&)>& change)
{
    const auto name = "Change " + plain(QString(label).remove(QLatin1Char('&')));
    if (m_id && !m_model.invoices().edit(*m_id, name, change))
        refresh(); // Refused: what is recorded is shown again.
}

void DocumentCard::show(const Base::Uuid& id)
{
    if (m_id != id) {
        for (const auto& row : m_rows)
            dynamic_cast<Committing&>(*row.field).revert();
    }
    m_id = id;
    refresh();
}

void DocumentCard::refresh()
{
    const auto* const invoice = m_id ? m_model.invoice(*m_id) : nullptr;
    if (!invoice)
        return;
    const bool isDraft = !invoice->isIssued(), canEdit = m_model.canEdit();
    const auto reason = qt(m_model.readOnlyText());
    bool hasFields = false, hasTexts = false;
    for (const auto& row : m_rows) {
        const bool isField
            = isDraft && (row.scope == Scope::allDocuments || invoice->kind == DocumentKind::invoice);
        const auto words = isField ? QString() : qt(row.words(*invoice));
        row.fill(*invoice);
        row.text->setText(words);
        row.text->setAccessibleDescription(words);
        m_fields->setRowVisible(row.field, isField);
        m_texts->setRowVisible(row.text, !words.isEmpty());
        hasFields |= isField;
        hasTexts |= !words.isEmpty();
        if (auto* line = qobject_cast<QLineEdit*>(row.field))
            line->setReadOnly(!canEdit);
        else if (auto* area = qobject_cast<QPlainTextEdit*>(row.field))
            area->setReadOnly(!canEdit);
        row.field->setToolTip(reason);
    }
    m_fields->setVisible(hasFields);
    m_texts->setVisible(hasTexts);
    setVisible(hasFields || hasTexts);
    showMore(*invoice);
}

DateEdit* TermsCard::addDay(const QString& label, std::optional<Base::Instant> Invoice::*day)
{
    const auto& calendar = m_model.services().calendar;
    auto* field = new DateEdit(
        QLocale::system(), [this] { return m_model.moment().calendar.day(m_model.moment().now); }, this);
    field->setOptional(true);
    connect(field, &LineField::committed, this, [this, label, field, day, &calendar] {
        edit(label, [&](Invoice& invoice) {
            invoice.*day = field->value() ? std::optional(calendar.noon(*field->value())) : std::nullopt;
        });
    });
    addRow(
        label, field, Scope::invoices,
        [field, day, &calendar](const Invoice& invoice) {
            field->setValue(invoice.*day ? std::optional(calendar.day(*(invoice.*day))) : std::nullopt);
        },
        // On what is issued they stand in the header.
        [](const Invoice&) { return std::string(); });
    return field;
}

TermsCard::TermsCard(AppModel& model, QWidget* parent)
    : DocumentCard(QStringLiteral("Details"), model, parent)
{
    addDay(QStringLiteral("Issue date"), &Invoice::issueDate)
        ->setPlaceholderText(QStringLiteral("When issued"));
    m_due = addDay(QStringLiteral("Due date"), &Invoice::dueDate);
    auto* tax = new DecimalEdit(QLocale::system(), this);
    tax->setUnit(QStringLiteral("%"));
    tax->setWidthInCharacters(8);
    tax->setCheck([](const Base::Decimal& percent) {
        return percent.isNegative() ? QStringLiteral("A tax can’t be below zero.") : QString();
    });
    connect(tax, &LineField::committed, this, [this, tax] {
        edit(QStringLiteral("Tax %"), [&](Invoice& invoice) { invoice.taxPercent = *tax->value(); });
    });
    addRow(
        QStringLiteral("Tax %"), tax, Scope::invoices,
        [tax](const Invoice& invoice) { tax->setValue(invoice.taxPercent); },
        [this](const Invoice& invoice) { // With the name that goes before it.
            return invoice.taxPercent.isZero() ? std::string()
                                               : (invoice.taxLabel.empty() ? "Tax" : invoice.taxLabel) + " "
                    + m_model.formats().percent(invoice.taxPercent);
        });
    addText(QStringLiteral("Tax name"), Scope::invoices,
        [](Invoice& invoice) -> std::string& { return invoice.taxLabel; });
    hideLastWhenLocked();
    addText(QStringLiteral("Tax note"), Scope::invoices,
        [](Invoice& invoice) -> std::string& { return invoice.taxNote; });
    addArea(QStringLiteral("Payment terms"), Scope::invoices,
        [](Invoice& invoice) -> std::string& { return invoice.paymentTerms; });
    addArea(QStringLiteral("Notes"), Scope::allDocuments,
        [](Invoice& invoice) -> std::string& { return invoice.notes; });
}

void TermsCard::showMore(const Invoice& invoice)
{
    const auto* const client = m_model.client(invoice.clientID);
    const auto days = client ? client->paymentDays : 0;
    m_due->setPlaceholderText(
        days == 0 ? QStringLiteral("The same day") : qt(counted(days, "day", "days") + " later"));
}

PartyCard::PartyCard(AppModel& model, QWidget* parent)
    : DocumentCard(QStringLiteral("Client as printed"), model, parent)
    , m_outdated(new NoteLine(Icon::warning, Tone::amber, {}, this))
{
    m_outdated->setTinted(true);
    m_outdated->hide();
    m_outdated->addButton(QStringLiteral("Update from Client"));
    m_outdated->setObjectName(QStringLiteral("clientOutdated"));
    content()->insertWidget(0, m_outdated);
    addText(QStringLiteral("Client name"), Scope::invoices,
        [](Invoice& invoice) -> std::string& { return invoice.client.name; });
    addText(QStringLiteral("Contact"), Scope::invoices,
        [](Invoice& invoice) -> std::string& { return invoice.client.contact; });
    addArea(QStringLiteral("Address"), Scope::invoices,
        [](Invoice& invoice) -> std::string& { return invoice.client.address; });
    addText(QStringLiteral("Email"), Scope::invoices,
        [](Invoice& invoice) -> std::string& { return invoice.client.email; });
    addText(QStringLiteral("Tax number"), Scope::invoices,
        [](Invoice& invoice) -> std::string& { return invoice.client.taxID; });
    connect(m_outdated->button(), &QPushButton::clicked, this, [this] {
        if (m_id)
            m_model.invoices().updateFromClient(*m_id);
    });
}

void PartyCard::showMore(const Invoice& invoice)
{
    m_outdated->setSentence(m_model.invoices().clientIsOutdated(invoice)
            ? QStringLiteral("The client’s details, tax or terms differ from those on this draft.")
            : QString());
    m_outdated->button()->setEnabled(m_model.canEdit());
    m_outdated->button()->setToolTip(qt(m_model.readOnlyText()));
}

} // namespace Pallisande
