#pragma once

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Screens/Commands.h"
#include "Pallisande/Screens/ViewState.h"

#include <QWidget>

#include <vector>

namespace Pallisande {

// What every page is handed.
struct ScreenServices {
    AppModel& model;
    Commands& commands;
    ViewState& view;
};

// One section of the window, below the toolbar. It follows the model by its signals; it is made once and only
// shown and hidden afterwards, so what it holds must be cheap while hidden.
class SectionPage : public QWidget {
    Q_OBJECT

public:
    SectionPage(const ScreenServices& services, QWidget* parent)
        : QWidget(parent)
        , m_services(services)
    {
    }

    virtual QString title() const = 0;
    // The popups that the toolbar shows beside the title, in this order.
    virtual std::vector<QWidget*> filters() const { return {}; }
    virtual QString searchHint() const { return {}; } // "Search jobs"; empty: this page has no search.
    virtual std::string countText() const { return {}; } // "3 of 128 jobs", beside the search.
    // In reading order, for F6: list, detail, inspector or preview. Those that are hidden are passed over.
    virtual std::vector<QWidget*> panes() const = 0;
    virtual void focusList() = 0;
    virtual void focusDetail() { }
    // Commands of the window that this page answers; false: it has nothing to do with it.
    virtual bool carryOut(Command) { return false; }

protected:
    AppModel& model() const { return m_services.model; }
    Commands& commands() const { return m_services.commands; }
    ViewState& view() const { return m_services.view; }

    ScreenServices m_services;
};

SectionPage* makeDeadlinesPage(const ScreenServices& services, QWidget* parent);
SectionPage* makeJobsPage(const ScreenServices& services, QWidget* parent);
SectionPage* makeClientsPage(const ScreenServices& services, QWidget* parent);
SectionPage* makeInvoicesPage(const ScreenServices& services, QWidget* parent);

} // namespace Pallisande
