#pragma once

#include "Pallisande/Model/LibraryChanges.h"
#include "Pallisande/Model/RecordList.h"
#include "PallisandeKit/Records/Library.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace Pallisande {

class AppModel;

enum class ClientSort { name, openJobs, lastJob, outstanding };

struct ClientRow {
    Base::Uuid id;
    std::string name;
    std::string open; // "3 open", or empty.
    std::string terms; // "GBP · 0.09 per word"
    bool isArchived = false;
    std::string spoken;
};

// What the jobs and invoices of a client come to.
struct ClientFigures {
    std::int64_t openJobs = 0; // Quoted or in progress.
    std::int64_t jobs = 0, invoices = 0;
    std::optional<Base::Instant> lastJob; // When it was received.
    std::map<std::string, Base::Decimal> outstanding; // Still due on issued invoices, by currency.
};

class ClientSection {
public:
    using IDs = std::vector<Base::Uuid>;

    explicit ClientSection(AppModel& model);

    // --- List
    const IDs& ids() const { return m_list.ids(); } // Archived ones last, if they are shown.
    ClientRow row(const Base::Uuid& id) const;
    std::string countText() const;
    std::int64_t archivedCount() const;
    bool showsArchived() const { return m_showsArchived; }
    void setShowsArchived(bool shows);
    ClientSort sort() const { return m_sort; }
    void setSort(ClientSort sort);
    const ClientFigures& figures(const Base::Uuid& id) const;
    IDs recentJobs(const Base::Uuid& id) const; // The last eight, newest first.
    IDs recentInvoices(const Base::Uuid& id) const;

    // --- Operations
    bool add(); // One named “New client”, which is shown.
    // What an edit would do to the prices of jobs that aren't on an invoice yet.
    struct PriceEffect {
        IDs jobs; // Whose price changes.
        std::int64_t quoted = 0; // Of them, with a quote number.
        bool canKeepRates = false; // It is their rate that changes.
    };
    PriceEffect priceEffect(const Base::Uuid& id, const std::function<void(Client&)>& change) const;
    // `keepsRates`: jobs in the effect get the rate of before as their own.
    bool edit(const Base::Uuid& id, const std::string& name, const std::function<void(Client&)>& change,
        bool keepsRates = false);
    // After the client was changed from `before`: jobs whose price that changed get their old rate as their
    // own.
    bool keepRates(const Client& before);
    // The currencies of drafts that were made before the client's changed.
    std::map<std::string, std::int64_t> otherDraftCurrencies(const Base::Uuid& id) const;
    bool setArchived(const Base::Uuid& id, bool archived);
    bool remove(const Base::Uuid& id);

    // --- For the model
    void outdate();
    void letGo();
    void react(const LibraryChanges& changes);
    void unhide(const Base::Uuid& id);

private:
    IDs make(const RecordList::Kept& kept) const;
    void listChanged();

    AppModel& m_model;
    RecordList m_list;
    ClientSort m_sort = ClientSort::name;
    bool m_showsArchived = false;
    mutable std::optional<std::unordered_map<Base::Uuid, ClientFigures>> m_figures;
};

} // namespace Pallisande
