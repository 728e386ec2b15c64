#include "Pallisande/Screens/ClientBox.h"

#include "Pallisande/Model/JobSection.h"
#include "Pallisande/Model/SearchKey.h"
#include "Pallisande/Screens/Text.h"

#include <QCompleter>
#include <QEvent>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QStringListModel>

#include <algorithm>

namespace Pallisande {

namespace {

const QString newClient = QStringLiteral("new");

// Asks for the languages whenever the field gets the focus, since every edit may bring another one.
class LanguageOffer : public QObject {
public:
    LanguageOffer(QLineEdit* field, AppModel& model)
        : QObject(field)
        , m_model(model)
        , m_languages(new QStringListModel(this))
    {
        auto* completer = new QCompleter(m_languages, field);
        completer->setCaseSensitivity(Qt::CaseInsensitive);
        field->setCompleter(completer);
        field->installEventFilter(this);
    }

    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::FocusIn) {
            QStringList languages;
            for (const auto& language : m_model.jobs().languages())
                languages.push_back(qt(language));
            m_languages->setStringList(languages);
        }
        return false;
    }

private:
    AppModel& m_model;
    QStringListModel* m_languages;
};

} // namespace

ClientBox::ClientBox(AppModel& model, QWidget* parent)
    : ComboBox(parent)
    , m_model(model)
{
    setSearchable(true);
    connect(&model, &AppModel::libraryChanged, this, [this](const LibraryChanges& changes) {
        if (changes.concerns(RecordKind::client))
            refresh();
    });
    connect(this, &QComboBox::activated, this, [this](int place) {
        const auto chosenItem = itemData(place).toString();
        if (chosenItem == newClient) {
            refresh(); // The one chosen before stays.
            emit newClientWanted();
            return;
        }
        const auto chosen = Base::Uuid::parse(plain(chosenItem));
        if (std::exchange(m_client, chosen) != chosen)
            emit clientChosen();
    });
    refresh();
}

void ClientBox::setFirstChoice(const QString& text)
{
    m_firstChoice = text;
    refresh();
}

void ClientBox::setOffersNewClient(bool offers)
{
    m_offersNewClient = offers;
    refresh();
}

std::optional<Base::Uuid> ClientBox::client() const { return m_client; }

void ClientBox::setClient(std::optional<Base::Uuid> id)
{
    if (id == m_client && (!id || currentData().toString() == qt(id->toString())))
        return;
    m_client = id;
    refresh();
}

void ClientBox::refresh()
{
    struct Choice {
        std::string key;
        const Client* client;
    };
    std::vector<Choice> choices;
    for (const auto& client : m_model.library().clients) {
        if (!client.archived || client.id == m_client)
            choices.push_back({ sortKey(client.name), &client });
    }
    std::stable_sort(choices.begin(), choices.end(),
        [](const Choice& left, const Choice& right) { return left.key < right.key; });
    const QSignalBlocker quiet(this);
    clear();
    if (!m_firstChoice.isEmpty())
        addItem(m_firstChoice);
    for (const auto& [key, client] : choices) {
        const auto name = client->name.empty() ? QStringLiteral("Unnamed client") : qt(client->name);
        addItem(client->archived ? name + QStringLiteral(" (archived)") : name, qt(client->id.toString()));
    }
    if (m_offersNewClient)
        addItem(QStringLiteral("New Client…"), newClient);
    setCurrentIndex(m_client ? findData(qt(m_client->toString())) : m_firstChoice.isEmpty() ? -1 : 0);
}

void completeLanguages(QLineEdit* field, AppModel& model) { new LanguageOffer(field, model); }

} // namespace Pallisande
