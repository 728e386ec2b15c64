#pragma once

#include "Pallisande/Model/LibraryChanges.h"
#include "Pallisande/Model/RecordList.h"
#include "Pallisande/Model/Sheet.h"
#include "PallisandeKit/Ledger/Deadlines.h"
#include "PallisandeKit/Ledger/Ledger.h"
#include "TamberlinKit/Quotes/PrintedDocument.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Pallisande {

class AppModel;
struct Edit;

enum class InvoiceFilter { all, drafts, unpaid, overdue, paid, credited, creditNotes };
enum class InvoiceSort { newest, client, due, amount, status };

struct YearFilter {
    enum class Kind { all, thisYear, year };

    Kind kind = Kind::all;
    int year = 0;

    bool operator==(const YearFilter&) const = default;
};

struct InvoiceRow {
    Base::Uuid id;
    std::string title; // The number, or “Draft”.
    std::string subtitle; // "Nordwind · 2 Feb", of a draft "Nordwind · made 9 Mar".
    std::string client; // With which the subtitle begins; what may be cut short.
    std::string total; // With its currency.
    InvoiceStatus status = InvoiceStatus::draft;
    std::string chip; // "Overdue 5 days"
    std::string spoken;
};

// What the issue sheet shows before anything is issued.
struct IssueOutlook {
    std::string number; // Empty when it is refused.
    std::string total;
    std::string rate; // "1 GBP = 1.171200 EUR · ECB, 9 Mar 2026", or that there is none; empty: not needed.
    bool lacksRate = false;
    std::vector<std::string> warnings;
    std::string refusal; // Empty: it can be issued.
};

// A client with delivered jobs, for the menu New Invoice.
struct InvoiceOffer {
    Base::Uuid clientID;
    std::string text; // "Nordwind GmbH: 3 jobs, 1,240.00 EUR"
    std::vector<Base::Uuid> jobs;
};

struct PaymentEntry {
    Base::Instant date;
    Base::Decimal amount;
    std::optional<Base::Decimal> receivedHome;
    std::optional<Base::Decimal> rate; // Typed: home currency for one unit of the invoice's.
    std::string note;
};

// The invoices and credit notes: their list and what is done with them.
class InvoiceSection {
public:
    using IDs = std::vector<Base::Uuid>;

    explicit InvoiceSection(AppModel& model);
    ~InvoiceSection();

    // --- List (InvoiceList.cpp)
    const IDs& ids() const { return m_list.ids(); }
    InvoiceRow row(const Base::Uuid& id) const;
    std::string countText() const;
    InvoiceStatus status(const Invoice& invoice) const;
    Base::Decimal stillDue(const Invoice& invoice) const;
    InvoiceFilter filter() const { return m_filter; }
    void setFilter(InvoiceFilter filter);
    YearFilter yearFilter() const { return m_year; }
    void setYearFilter(YearFilter year);
    std::vector<int> years() const; // Newest first.
    std::optional<Base::Uuid> clientFilter() const { return m_client; }
    void setClientFilter(std::optional<Base::Uuid> client);
    InvoiceSort sort() const { return m_sort; }
    void setSort(InvoiceSort sort);
    const std::vector<std::string>& numbering() const; // The findings; one line says that all is well.
    bool numberingIsSound() const;

    // --- Drafts (InvoiceDrafts.cpp, InvoiceLines.cpp)
    std::vector<InvoiceOffer> offers() const;
    bool makeDraft(std::span<const Base::Uuid> jobs); // Which is then shown.
    bool makeBlankDraft(const Base::Uuid& clientID);
    std::vector<Base::Uuid> otherDelivered(const Invoice& draft) const; // Jobs that could be on it too.
    bool addJobs(const Base::Uuid& id, std::span<const Base::Uuid> jobs);
    bool edit(const Base::Uuid& id, const std::string& name, const std::function<void(Invoice&)>& change);
    bool addLine(const Base::Uuid& id);
    // An amount follows quantity and price when one of them is changed, and not the amount itself.
    bool editLine(
        const Base::Uuid& id, const Base::Uuid& line, const std::function<void(InvoiceLine&)>& change);
    bool removeLine(const Base::Uuid& id, const Base::Uuid& line);
    bool moveLine(const Base::Uuid& id, const Base::Uuid& line, int by);
    static bool amountIsTyped(const InvoiceLine& line, const std::string& currency);
    // Whether its jobs or its client are priced or named differently by now.
    bool linesAreOutdated(const Invoice& draft) const;
    bool clientIsOutdated(const Invoice& draft) const;
    bool updateLines(const Base::Uuid& id);
    bool updateFromClient(const Base::Uuid& id);
    bool removeDraft(const Base::Uuid& id);
    // The draft as it would be printed now, or an issued document as its record stands.
    Tamberlin::PrintedDocument document(const Invoice& invoice) const;
    void saveDraftPDF(const Base::Uuid& id);

    // --- Issuing (InvoiceIssuing.cpp)
    void openIssueSheet(const Base::Uuid& id);
    IssueOutlook outlook(
        const Base::Uuid& id, Base::Instant issueDate, std::optional<Base::Instant> dueDate) const;
    // Draws the PDF off the main thread, then issues; the sheet closes when it is done.
    void issue(const Base::Uuid& id, Base::Instant issueDate, std::optional<Base::Instant> dueDate);
    bool isIssuing() const { return m_issuing.has_value(); }
    bool makeCreditNote(const Base::Uuid& id);

    // The day on which a draft that is issued then will be due.
    Base::Instant dueDate(const Invoice& draft, Base::Instant issueDate) const;
    // As it would be printed when it is issued so; as a draft while that is refused.
    Tamberlin::PrintedDocument documentToIssue(
        const Invoice& draft, Base::Instant issueDate, std::optional<Base::Instant> dueDate) const;
    std::vector<Base::Uuid> creditNotes(const Base::Uuid& invoiceID) const; // Drafts too.
    Base::Decimal leftToCredit(const Invoice& invoice) const;

    struct StoredPDF {
        std::filesystem::path path;
        bool isAsIssued = false; // By the hash in the issue log.
        std::string failure; // Why it can't be had; empty: it is there.
    };
    void examineStoredPDF(const Base::Uuid& id, std::function<void(const StoredPDF&)> then);
    // Tells when the file is missing; compares it off the main thread.
    void withStoredPDF(const Base::Uuid& id, std::function<void(const StoredPDF&)> then);
    void openStoredPDF(const Base::Uuid& id);
    void showStoredPDF(const Base::Uuid& id);

    // --- Words (InvoiceWords.cpp)
    std::string stateText(const Invoice& invoice) const; // "issued 2 Feb 2026 · due 4 Mar 2026 (5 days ago)"
    std::string reminderText(const Invoice& invoice) const; // Of a payment, for the client.
    void email(const Base::Uuid& id); // The user's mail program, with a letter that says what is attached.

    // --- Payments and rates (InvoicePayments.cpp)
    // The part of a payment that didn't arrive in the home currency; nothing when that isn't known.
    static std::optional<Base::Decimal> bankKept(const Invoice& invoice, const Base::Decimal& amount,
        const std::optional<Base::Decimal>& receivedHome, const std::optional<Base::Decimal>& rate);
    bool recordPayment(const Base::Uuid& id, const PaymentEntry& entry);
    bool editPayment(const Base::Uuid& id, const Base::Uuid& payment, const PaymentEntry& entry);
    bool removePayment(const Base::Uuid& id, const Base::Uuid& payment);
    bool payInFull(std::span<const Base::Uuid> ids, Base::Instant date);
    bool lacksRate(const Invoice& invoice) const;
    std::optional<ExchangeRate> rateFor(const Invoice& invoice, Base::Instant day) const;
    std::optional<Base::Decimal> ecbRate(
        const std::string& from, const std::string& to, Base::Instant day) const; // Whatever was typed.
    std::string rateText(const ExchangeRate& rate) const; // "1 GBP = 1.171200 EUR · ECB, 9 Mar 2026"
    bool addExchangeRate(const Base::Uuid& id); // The stored one of its day, or the sheet for one.
    // From the sheet; goes to the document that asked for it, too.
    bool typeRate(const TypedRateSheet& sheet, const Base::Decimal& rate, const std::string& note);

    // --- For the model
    void outdate();
    void letGo();
    void react(const LibraryChanges& changes);
    void unhide(const Base::Uuid& id);

private:
    struct Drawn;

    IDs make(const RecordList::Kept& kept) const;
    bool passes(const Invoice& invoice, int thisYear) const;
    void listChanged();
    void listChosen();
    bool editAlone(
        const Base::Uuid& id, const std::string& name, const std::function<void(Invoice&)>& change);
    std::vector<InvoiceLine> freshLines(const Invoice& draft) const;
    void draw(std::shared_ptr<Drawn> drawn);
    void finishIssuing(const std::shared_ptr<Drawn>& drawn);
    Payment payment(const Invoice& invoice, const PaymentEntry& entry) const;
    Edit editOfPayments(const std::string& name, std::span<const Base::Uuid> ids) const;
    bool enterPayment(const std::string& name, const Base::Uuid& id,
        const std::function<void(Library& library, const Invoice& invoice)>& enter); // Closes the sheet.

    AppModel& m_model;
    RecordList m_list;
    InvoiceFilter m_filter = InvoiceFilter::all;
    InvoiceSort m_sort = InvoiceSort::newest;
    YearFilter m_year;
    std::optional<Base::Uuid> m_client;
    std::optional<Base::Uuid> m_issuing;
    mutable std::optional<std::vector<std::string>> m_numbering;
};

} // namespace Pallisande
