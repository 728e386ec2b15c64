#include "Pallisande/Sheets/JobForm.h"

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Screens/ClientBox.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/DateEdit.h"
#include "Pallisande/Widgets/DeadlineEdit.h"
#include "Pallisande/Widgets/ReadingOrder.h"
#include "Pallisande/Widgets/TimeEdit.h"

namespace Pallisande {

JobForm::JobForm(AppModel& model, QWidget* parent)
    : FormLayout(parent)
    , m_model(model)
    , m_title(new TextField(this))
    , m_source(new TextField(this))
    , m_target(new TextField(this))
    , m_reference(new TextField(this))
    , m_client(new ClientBox(model, this))
    , m_deadline(new DeadlineEdit(
          QLocale::system(), [this] { return m_model.moment(); }, this))
{
    m_title->setObjectName(QStringLiteral("jobTitle"));
    m_client->setObjectName(QStringLiteral("jobClient"));
    m_source->setObjectName(QStringLiteral("jobSource"));
    m_target->setObjectName(QStringLiteral("jobTarget"));
    m_reference->setObjectName(QStringLiteral("jobReference"));
    m_title->setPlaceholderText(QStringLiteral("Untitled job"));
    m_reference->setPlaceholderText(QStringLiteral("Purchase order or project number"));
    m_client->setOffersNewClient(true);
    for (auto* language : { m_source, m_target }) {
        language->setWidthInCharacters(18);
        completeLanguages(language, model);
    }
    addRow(QStringLiteral("Title"), m_title, Width::stretching);
    addRow(QStringLiteral("Client"), m_client, Width::stretching);
    addRow(QStringLiteral("Source language"), m_source);
    addRow(QStringLiteral("Target language"), m_target);
    addRow(QStringLiteral("Reference"), m_reference, Width::stretching);
    addRow(QStringLiteral("Deadline"), m_deadline, Width::stretching);
    orderByReading(this);
    for (auto* field : { m_title, m_source, m_target, m_reference })
        connect(field, &TextField::committed, this, &JobForm::changed);
    connect(m_deadline, &DeadlineEdit::committed, this, &JobForm::changed);
    connect(m_client, &ClientBox::clientChosen, this, [this] {
        showZone();
        emit changed();
    });
    connect(m_client, &ClientBox::newClientWanted, this, &JobForm::newClientWanted);
}

void JobForm::setEntries(NewJob entries)
{
    const auto* const client = m_model.client(entries.clientID);
    if (!client || client->archived)
        entries.clientID = m_model.jobs().proposal().clientID;
    m_title->setValue(qt(entries.title));
    m_client->setClient(entries.clientID.isNil() ? std::nullopt : std::optional(entries.clientID));
    m_source->setValue(qt(entries.pair.source));
    m_target->setValue(qt(entries.pair.target));
    m_reference->setValue(qt(entries.reference));
    showZone();
    m_deadline->setValue(entries.deadline);
}

NewJob JobForm::entries() const
{
    return { .title = plain(m_title->value()),
        .clientID = m_client->client().value_or(Base::Uuid {}),
        .pair = { plain(m_source->value()), plain(m_target->value()) },
        .reference = plain(m_reference->value()),
        .deadline = m_deadline->value() };
}

bool JobForm::commit()
{
    bool isWell = true;
    for (auto* field : std::initializer_list<LineField*> {
             m_title, m_source, m_target, m_reference, m_deadline->day(), m_deadline->time() })
        isWell = field->commit() && isWell;
    return isWell;
}

QWidget* JobForm::firstField() const { return m_title; }

// The wall clock stays when the client does not: five o'clock is five o'clock there.
void JobForm::showZone()
{
    const auto* const client = m_client->client() ? m_model.client(*m_client->client()) : nullptr;
    const auto own = m_model.moment().calendar;
    const auto zone = client ? Base::Calendar::named(client->timeZone).value_or(own) : own;
    m_deadline->moveToZone(zone);
}

} // namespace Pallisande
