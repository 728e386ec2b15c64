#pragma once

#include "Pallisande/Model/LibraryChanges.h"
#include "Pallisande/Model/RecordIndex.h"
#include "Pallisande/Model/RecordList.h"
#include "PallisandeKit/Pricing/JobPricing.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Pallisande {

class AppModel;

enum class JobFilter { open, quote, inProgress, delivered, invoiced, paid, cancelled, all };
enum class JobSort { deadline, title, client, received, price };

struct JobRow {
    Base::Uuid id;
    std::string title; // "Untitled job" when it has none.
    bool isUntitled = false;
    std::string subtitle; // "Nordwind · en → de · due tomorrow 17:00"
    std::string client; // With which the subtitle begins; what may be cut short.
    std::string price; // Before tax, as billed once it is; empty while there is none.
    JobStatus status = JobStatus::quote;
    bool hasProblems = false;
    std::string spoken; // All of it as one sentence.
};

struct NewJob {
    std::string title;
    Base::Uuid clientID;
    LanguagePair pair;
    std::string reference;
    std::optional<Base::Instant> deadline;
};

// The jobs: their list and what is done with them. Operations on several jobs are one step.
class JobSection {
public:
    using IDs = std::vector<Base::Uuid>;

    explicit JobSection(AppModel& model);

    // --- List
    const IDs& ids() const { return m_list.ids(); }
    JobRow row(const Base::Uuid& id) const;
    std::string countText() const; // "3 of 128 jobs"
    std::string selectionText(std::span<const Base::Uuid> ids) const; // "3 jobs selected, 1,240.00 EUR …"
    JobFilter filter() const { return m_filter; }
    void setFilter(JobFilter filter);
    std::optional<Base::Uuid> clientFilter() const { return m_client; }
    void setClientFilter(std::optional<Base::Uuid> client);
    JobSort sort() const { return m_sort; }
    void setSort(JobSort sort);

    // --- Operations
    void openNewJob(const std::string& title = {}, std::optional<std::filesystem::path> report = {});
    NewJob proposal() const; // The client on show or the last one, and its last pair.
    bool add(const NewJob& job); // From the sheet, which closes; the job is shown.
    Job made(const NewJob& job) const; // The record, with an identity of its own.
    // Changes the record by a function; `name` is that of the step ("Change Deadline").
    bool edit(const Base::Uuid& id, const std::string& name, const std::function<void(Job&)>& change);
    bool setStatus(std::span<const Base::Uuid> ids, JobStatus status);
    bool mayHaveStatus(const Base::Uuid& id, JobStatus status) const; // By hand, from the one it has.
    bool duplicate(const Base::Uuid& id);
    bool remove(std::span<const Base::Uuid> ids);
    std::optional<std::string> giveQuoteNumber(const Base::Uuid& id);
    bool makeInvoice(std::span<const Base::Uuid> ids);

    bool addExtra(const Base::Uuid& id, ExtraLine line = {});
    bool editExtra(
        const Base::Uuid& id, const Base::Uuid& line, const std::function<void(ExtraLine&)>& change);
    bool removeExtra(const Base::Uuid& id, const Base::Uuid& line);
    bool moveExtra(const Base::Uuid& id, const Base::Uuid& line, int by);

    bool removeAnalysis(const Base::Uuid& id, const Base::Uuid& analysis);
    bool renameAnalysis(const Base::Uuid& id, const Base::Uuid& analysis, const std::string& name);
    // Counts that the user typed, in the place of earlier ones when `replaced` is given.
    bool typeCounts(const Base::Uuid& id, const std::string& name, const BandCounts& counts,
        std::optional<Base::Uuid> replaced = std::nullopt);
    // What the job would cost with them, before tax.
    std::optional<Base::Decimal> priceWith(
        const Base::Uuid& id, const BandCounts& counts, std::optional<Base::Uuid> replaced) const;
    void showReport(const Base::Uuid& id, const Base::Uuid& analysis);

    // Why counts, client and price of a job can't be changed: "This job is on INV-2026-007."
    std::optional<std::string> lockText(const Job& job) const;
    JobPrice price(const Job& job) const; // Of nothing when its client is missing.
    // What lists and the job's own page show of it, which is what was billed once an invoice is issued.
    const RecordIndex::JobFigures& figures(const Job& job) const;
    BandCounts counts(const Job& job) const; // Of all its analyses together.
    std::vector<std::string> languages() const; // Of all jobs and rates, in alphabetical order.

    // --- For the model
    void outdate() { m_list.outdate(); }
    void letGo();
    void react(const LibraryChanges& changes);
    void unhide(const Base::Uuid& id); // Clears search and filters that hide it.
    std::string dueText(const Job& job) const;
    // The same for the job's own page: "due Fri 6 Mar 2026, 17:00 (client time)".
    std::string dueSentence(const Job& job) const;

private:
    IDs make(const RecordList::Kept& kept) const;
    bool passes(const Job& job) const;
    void listChanged();
    void listChosen();
    bool editAlone(const Base::Uuid& id, const std::string& name, const std::function<void(Job&)>& change);

    AppModel& m_model;
    RecordList m_list;
    JobFilter m_filter = JobFilter::open;
    JobSort m_sort = JobSort::deadline;
    std::optional<Base::Uuid> m_client;
};

std::string jobTitle(const Job& job); // "Untitled job" when it has none.

} // namespace Pallisande
