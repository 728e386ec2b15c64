#include "Pallisande/Screens/Clients/ClientCard.h"

#include "Pallisande/Model/ClientSection.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/FieldLock.h"

namespace Pallisande {

ClientCard::ClientCard(AppModel& model, const QString& heading, QWidget* parent)
    : Card(heading, parent)
    , m_model(model)
{
}

void ClientCard::show(const Base::Uuid& id)
{
    if (std::exchange(m_id, id) != id) {
        m_lastField = nullptr;
        for (auto* widget : findChildren<QWidget*>()) {
            if (auto* field = dynamic_cast<Committing*>(widget))
                field->revert();
        }
    }
    const auto* const shown = client();
    if (!shown)
        return;
    for (const auto& text : m_texts)
        text(*shown);
    refresh(*shown);
    setLocked(*this, !m_model.canEdit(), qt(m_model.readOnlyText()));
}

bool ClientCard::edit(
    const QWidget* field, const std::string& step, const std::function<void(Client&)>& change)
{
    if (std::exchange(m_lastField, field) != field || !field)
        m_model.endMerging();
    if (m_model.clients().edit(m_id, step, change))
        return true;
    if (const auto* const shown = client()) // Refused: what is chosen goes back to what is.
        refresh(*shown);
    return false;
}

TextField* ClientCard::addText(FormLayout& form, const QString& label, const std::string& step,
    std::string Client::*member, FormLayout::Width width)
{
    auto* field = new TextField(&form);
    form.addRow(label, field, width);
    m_texts.push_back([field, member](const Client& client) { field->setValue(qt(client.*member)); });
    connect(field, &LineField::committed, this, [this, field, step, member] {
        edit(field, step, [&](Client& client) { client.*member = plain(field->value()); });
    });
    return field;
}

TextArea* ClientCard::addArea(
    FormLayout& form, const QString& label, const std::string& step, std::string Client::*member)
{
    auto* area = new TextArea(&form);
    form.addRow(label, area, FormLayout::Width::stretching);
    bind(area, step, member);
    return area;
}

void ClientCard::bind(TextArea* area, const std::string& step, std::string Client::*member)
{
    m_texts.push_back([area, member](const Client& client) { area->setValue(qt(client.*member)); });
    connect(area, &TextArea::committed, this, [this, area, step, member] {
        edit(area, step, [&](Client& client) { client.*member = plain(area->value()); });
    });
}

} // namespace Pallisande
