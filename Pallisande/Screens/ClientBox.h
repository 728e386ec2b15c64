#pragma once

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Widgets/ComboBox.h"

class QLineEdit;

namespace Pallisande {

// A choice among the clients that aren't archived, by name.
class ClientBox : public ComboBox {
    Q_OBJECT

public:
    ClientBox(AppModel& model, QWidget* parent);

    void setFirstChoice(const QString& text); // “Any client”: nobody in particular.
    void setOffersNewClient(bool offers); // «New Client…» at the end.

    std::optional<Base::Uuid> client() const;
    void setClient(std::optional<Base::Uuid> id); // Also one that is archived.
    void refresh();

signals:
    void clientChosen(); // By the user, and another one.
    void newClientWanted();

private:
    AppModel& m_model;
    QString m_firstChoice;
    bool m_offersNewClient = false;
    std::optional<Base::Uuid> m_client;
};

// Offers the languages of jobs and rates while one is typed.
void completeLanguages(QLineEdit* field, AppModel& model);

} // namespace Pallisande
