#include "Pallisande/Screens/Jobs/JobDetailsCard.h"

#include "Pallisande/Screens/ClientBox.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/DateEdit.h"
#include "Pallisande/Widgets/DeadlineEdit.h"
#include "Pallisande/Widgets/FormLayout.h"
#include "Pallisande/Widgets/NumberEdit.h"
#include "Pallisande/Widgets/TextArea.h"
#include "Pallisande/Widgets/TimeEdit.h"

#include <QHBoxLayout>

namespace Pallisande {

namespace {

// What isn't a number here gets the sentence of its own field.
class SurchargeEdit : public DecimalEdit {
public:
    using DecimalEdit::DecimalEdit;

protected:
    QString notRead(const QString&) const override
    {
        return QStringLiteral("A surcharge is a number of percent.");
    }
};

QString refusalOf(AppModel& model) { return model.problem() ? qt(model.problem()->text) : QString(); }

} // namespace

JobDetailsCard::JobDetailsCard(const ScreenServices& services, QWidget* parent)
    : JobCard(QStringLiteral("Details"), services, parent)
    , m_form(new FormLayout(this))
    , m_client(new ClientBox(services.model, m_form))
    , m_source(new TextField(m_form))
    , m_target(new TextField(m_form))
    , m_reference(new TextField(m_form))
    , m_rate(new DecimalEdit(QLocale::system(), m_form))
    , m_surcharge(new SurchargeEdit(QLocale::system(), m_form))
    , m_quoteNumber(new TextField)
{
    const auto today = [this] { return model().moment().calendar.day(model().moment().now); };
    m_received = new DateEdit(QLocale::system(), today, m_form);
    m_delivered = new DateEdit(QLocale::system(), today, m_form);
    m_deadline = new DeadlineEdit(
        QLocale::system(), [this] { return model().moment(); }, m_form);
    m_client->setObjectName(QStringLiteral("client"));
    m_source->setObjectName(QStringLiteral("source"));
    m_target->setObjectName(QStringLiteral("target"));
    m_reference->setObjectName(QStringLiteral("reference"));
    m_client->setMinimumContentsLength(24);
    m_received->setObjectName(QStringLiteral("received"));
    m_delivered->setObjectName(QStringLiteral("delivered"));
    m_rate->setObjectName(QStringLiteral("rate"));
    m_surcharge->setObjectName(QStringLiteral("surcharge"));
    m_quoteNumber->setObjectName(QStringLiteral("quoteNumber"));
    m_reference->setPlaceholderText(QStringLiteral("Purchase order or project number"));
    m_quoteNumber->setPlaceholderText(QStringLiteral("Not given yet"));
    m_quoteNumber->setReadOnly(true);
    m_quoteNumber->setWidthInCharacters(18);
    for (auto* language : { m_source, m_target }) {
        language->setWidthInCharacters(18);
        completeLanguages(language, model());
    }
    m_rate->setOptional(true);
    m_rate->setPlaces(2);
    m_rate->setWidthInCharacters(34); // Of the placeholder.
    m_rate->setCheck([](const Base::Decimal& rate) {
        return rate.isNegative() ? QStringLiteral("A rate can’t be below zero.") : QString();
    });
    m_surcharge->setUnit(QStringLiteral("%"));
    m_surcharge->setWidthInCharacters(10);
    auto* quote = new QWidget(m_form);
    auto* line = new QHBoxLayout(quote);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(Space::small);
    line->addWidget(m_quoteNumber);
    m_giveNumber = actionButton(
        commands().action(Command::giveQuoteNumber), QStringLiteral("Give Number"), ButtonKind::plain, quote);
    m_giveNumber->setObjectName(QStringLiteral("giveQuoteNumber"));
    line->addWidget(m_giveNumber);
    line->addStretch();

    using Width = FormLayout::Width;
    m_clientNote = m_form->addRow(QStringLiteral("Client"), m_client);
    m_form->addRow(QStringLiteral("Source language"), m_source);
    m_form->addRow(QStringLiteral("Target language"), m_target);
    m_form->addRow(QStringLiteral("Reference"), m_reference, Width::stretching);
    m_form->addRow(QStringLiteral("Received"), m_received);
    m_deadlineNote = m_form->addRow(QStringLiteral("Deadline"), m_deadline, Width::stretching);
    m_form->addRow(QStringLiteral("Delivered"), m_delivered);
    m_form->addRow(QStringLiteral("Rate for this job"), m_rate);
    m_form->addRow(QStringLiteral("Surcharge"), m_surcharge);
    m_form->addRow(QStringLiteral("Quote number"), quote, Width::stretching);
    content()->addWidget(m_form);
    connectFields();
}

void JobDetailsCard::connectFields()
{
    const auto onText = [this](TextField* field, const char* step, auto set) {
        connect(field, &TextField::committed, this, [this, field, step, set] {
            edit(*field, step, [&](Job& job) { set(job, plain(field->value())); });
        });
    };
    onText(m_source, "Change Source Language",
        [](Job& job, std::string text) { job.pair.source = std::move(text); });
    onText(m_target, "Change Target Language",
        [](Job& job, std::string text) { job.pair.target = std::move(text); });
    onText(
        m_reference, "Change Reference", [](Job& job, std::string text) { job.reference = std::move(text); });
    connect(m_client, &ClientBox::clientChosen, this, [this] {
        const auto chosen = m_client->client();
        const bool isDone
            = chosen && model().jobs().edit(id(), "Change Client", [&](Job& job) { job.clientID = *chosen; });
        m_clientNote->showProblem(isDone ? QString() : refusalOf(model()));
        if (!isDone)
            m_client->setClient(job()->clientID);
    });
    connect(m_received, &DateEdit::committed, this, [this] {
        edit(*m_received, "Change Received Day",
            [&](Job& job) { job.received = model().moment().calendar.noon(m_received->value().value()); });
    });
    connect(m_delivered, &DateEdit::committed, this, [this] {
        edit(*m_delivered, "Change Delivered Day", [&](Job& job) {
            job.deliveredAt = model().moment().calendar.noon(m_delivered->value().value());
        });
    });
    connect(m_deadline, &DeadlineEdit::committed, this, [this] {
        const bool isDone = model().jobs().edit(
            id(), "Change Deadline", [&](Job& job) { job.deadline = m_deadline->value(); });
        m_deadlineNote->showProblem(isDone ? QString() : refusalOf(model()));
    });
    connect(m_rate, &DecimalEdit::committed, this,
        [this] { edit(*m_rate, "Change Rate", [&](Job& job) { job.rateOverride = m_rate->value(); }); });
    connect(m_surcharge, &DecimalEdit::committed, this, [this] {
        edit(*m_surcharge, "Change Surcharge",
            [&](Job& job) { job.surchargePercent = m_surcharge->value().value_or(0); });
    });
}

void JobDetailsCard::revert()
{
    for (auto* field : std::initializer_list<LineField*> {
             m_source, m_target, m_reference, m_received, m_delivered, m_rate, m_surcharge })
        field->revert();
    m_deadline->revert();
    m_clientNote->showProblem({});
    m_deadlineNote->showProblem({});
}

void JobDetailsCard::refresh()
{
    const auto& shown = *job();
    const auto moment = model().moment();
    const auto& calendar = moment.calendar;
    const auto lock = lockReason(), readOnly = readOnlyReason();
    m_client->setClient(shown.clientID);
    m_client->setEnabled(lock.isEmpty());
    m_client->setToolTip(lock);
    m_source->setValue(qt(shown.pair.source));
    m_target->setValue(qt(shown.pair.target));
    m_reference->setValue(qt(shown.reference));
    m_received->setValue(calendar.day(shown.received));
    const auto* const owner = client();
    m_deadline->setZone(owner ? Base::Calendar::named(owner->timeZone).value_or(calendar) : calendar);
    m_deadline->setValue(shown.deadline);
    m_deadline->setEditable(readOnly.isEmpty(), readOnly);
    m_form->setRowVisible(m_delivered, shown.deliveredAt.has_value());
    if (shown.deliveredAt)
        m_delivered->setValue(calendar.day(*shown.deliveredAt));
    m_rate->setValue(shown.rateOverride);
    if (owner) {
        const auto terms = JobPricing::terms(*owner, shown.pair);
        m_rate->setPlaceholderText(
            QStringLiteral("Client’s rate: %1 %2 per %3")
                .arg(qt(model().formats().rate(terms.rate)), qt(terms.currency),
                    terms.unit == RateUnit::word ? QStringLiteral("word") : QStringLiteral("character")));
        m_rate->setUnit(qt(terms.currency));
        m_rate->setAccessibleDescription(m_rate->placeholderText());
    }
    m_surcharge->setValue(shown.surchargePercent);
    m_quoteNumber->setValue(qt(shown.quoteNumber.value_or("")));
    m_giveNumber->setVisible(!shown.quoteNumber);
    for (auto* field :
        std::initializer_list<QLineEdit*> { m_source, m_target, m_delivered, m_rate, m_surcharge })
        setLocked(field, lock);
    for (auto* field : std::initializer_list<QLineEdit*> { m_reference, m_received })
        setLocked(field, readOnly);
}

JobNotesCard::JobNotesCard(const ScreenServices& services, QWidget* parent)
    : JobCard(QStringLiteral("Notes"), services, parent)
    , m_notes(new TextArea(this))
{
    m_notes->setObjectName(QStringLiteral("notes"));
    m_notes->setAccessibleName(QStringLiteral("Notes"));
    m_notes->setMinimumWidth(120);
    content()->addWidget(m_notes);
    connect(m_notes, &TextArea::committed, this, [this] {
        model().jobs().edit(id(), "Change Notes", [&](Job& job) { job.notes = plain(m_notes->value()); });
    });
}

void JobNotesCard::revert() { m_notes->revert(); }

void JobNotesCard::refresh()
{
    m_notes->setValue(qt(job()->notes));
    m_notes->setReadOnly(!readOnlyReason().isEmpty());
    m_notes->setToolTip(readOnlyReason());
}

} // namespace Pallisande
