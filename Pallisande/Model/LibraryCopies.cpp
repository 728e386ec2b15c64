#include "Pallisande/Model/LibraryCopies.h"

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/InvoiceSection.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>

namespace Pallisande {

namespace {

namespace fs = std::filesystem;
using Kind = LibraryFileName::Kind;

constexpr std::size_t mostNamed = 8; // Records that a line names; the rest is counted.

std::string nameOf(const fs::path& file) { return file.filename().string(); }

std::string nameOf(const Client& client) { return client.name.empty() ? "Unnamed client" : client.name; }
std::string nameOf(const Job& job) { return job.title.empty() ? "Untitled job" : job.title; }
std::string nameOf(const Invoice& document)
{
    if (document.isIssued())
        return *document.number;
    return fmt::format("{} for {}",
        document.kind == DocumentKind::invoice ? "the draft" : "the draft credit note", document.client.name);
}

// “Only in this copy (12): A, B and 10 more”
template <typename Records, typename Name>
void addLine(LibraryCopies::Difference& difference, std::string_view where, const Records& records, Name name)
{
    if (records.empty())
        return;
    std::vector<std::string> names;
    for (const auto& record : records) {
        names.push_back(names.size() < mostNamed ? name(record) : std::string());
    }
    difference.lines.push_back(
        fmt::format("{} ({}): {}", where, records.size(), LibraryCopies::enumerated(names)));
}

template <typename Differences, typename Name>
void add(std::vector<LibraryCopies::Difference>& all, std::string about, const Differences& found, Name name)
{
    if (found.isEmpty())
        return;
    LibraryCopies::Difference difference { .about = std::move(about) };
    addLine(difference, "Only in this copy", found.added, name);
    addLine(difference, "Only in your library", found.gone, name);
    addLine(difference, "Different", found.changed, name);
    all.push_back(std::move(difference));
}

constexpr auto nameOfRecord = [](const auto* record) { return nameOf(*record); };

std::string_view titleOf(Ledger::Series series)
{
    return series == Ledger::Series::invoices   ? "Invoices"
        : series == Ledger::Series::creditNotes ? "Credit notes"
                                                : "Quotes";
}

} // namespace

// A copy on its way from the disk.
struct LibraryCopies::Reading {
    fs::path file;
    std::unique_ptr<Library> library;
    LibraryContents contents;
    std::string failure;
};

LibraryCopies::LibraryCopies(AppModel& model)
    : m_model(model)
{
}

std::string LibraryCopies::enumerated(const std::vector<std::string>& names)
{
    const auto shown = std::min(names.size(), mostNamed);
    std::string text;
    for (std::size_t place = 0; place < shown; ++place) {
        const bool isLast = place + 1 == names.size();
        text += (place == 0 ? "" : isLast ? " and " : ", ") + names[place];
    }
    return names.size() > shown ? fmt::format("{} and {} more", text, names.size() - shown) : text;
}

// --- The list

const LibraryCopies::Copy* LibraryCopies::find(const fs::path& file) const
{
    const auto found
        = std::find_if(m_all.begin(), m_all.end(), [&](const Copy& copy) { return copy.file == file; });
    return found == m_all.end() ? nullptr : &*found;
}

LibraryCopies::Copy LibraryCopies::describe(const fs::path& file) const
{
    Copy copy { .file = file };
    try {
        copy.identity = Base::fileIdentity(Base::Folder::open(file.parent_path()), nameOf(file));
    } catch (const std::system_error&) { // Reading it tells why.
    }
    const auto& calendar = m_model.services().calendar;
    const auto name = LibraryFileName::of(nameOf(file));
    copy.kind = name.kind;
    const auto timed = [&](Base::Calendar::Components at) {
        return Formats::day(at.day) + ", " + m_model.formats().time(at);
    };
    const auto digits = [&](std::size_t place) { return std::stoi(name.time.substr(place, 2)); };
    if (name.kind == Kind::dated)
        copy.when = Formats::day(*name.day);
    else if (name.kind == Kind::onDemand)
        copy.when = timed({ .day = *name.day, .hour = digits(0), .minute = digits(3) });
    else if (copy.identity)
        copy.when = timed(calendar.components({ copy.identity->modifiedNanoseconds / 1'000'000 }));
    copy.what = name.kind == Kind::dated ? "Daily copy"
        : name.kind == Kind::onDemand    ? "Made on demand"
        : name.kind == Kind::conflict    ? "From a sync program"
                                         : file.stem().string();
    return copy;
}

void LibraryCopies::list()
{
    const auto known = std::exchange(m_all, {});
    m_run = std::make_shared<int>();
    if (const auto* const session = m_model.session()) {
        try {
            for (const auto& file : session->store().conflictCopies())
                m_all.push_back(describe(file));
            std::stable_sort(m_all.begin(), m_all.end(), [](const Copy& left, const Copy& right) {
                return left.identity && right.identity
                    && left.identity->modifiedNanoseconds > right.identity->modifiedNanoseconds;
            });
            const auto backups = session->store().backups();
            const auto first = static_cast<std::ptrdiff_t>(m_all.size());
            std::transform(backups.begin(), backups.end(), std::back_inserter(m_all),
                [this](const fs::path& file) { return describe(file); });
            // A day's own copy was there before what was copied on demand; those of other names come last.
            const auto madeAt = [](const Copy& copy) {
                const auto name = LibraryFileName::of(nameOf(copy.file));
                return std::pair { name.day, name.time };
            };
            std::stable_sort(m_all.begin() + first, m_all.end(),
                [&](const Copy& left, const Copy& right) { return madeAt(left) > madeAt(right); });
        } catch (const std::system_error&) { // The folder is gone: there is nothing to list.
        }
    }
    for (auto& copy : m_all) {
        const auto same = std::find_if(known.begin(), known.end(), [&](const Copy& other) {
            return other.file == copy.file && other.identity && other.identity == copy.identity;
        });
        if (same != known.end()) {
            copy.contents = same->contents;
            copy.failure = same->failure;
        }
    }
    emit m_model.copiesChanged();
    readNext();
}

void LibraryCopies::refresh()
{
    if (m_run)
        list();
}

void LibraryCopies::letGo()
{
    m_run.reset();
    m_wanted.reset();
    m_all.clear();
}

std::function<void()> LibraryCopies::read(const std::shared_ptr<Reading>& reading, const Base::Moment& moment)
{
    return [reading, moment] {
        const auto name = nameOf(reading->file);
        try {
            reading->library = std::make_unique<Library>(
                LibraryStore::decode(Base::readFile(reading->file).bytes, moment));
            reading->contents = LibraryContents::of(*reading->library);
        } catch (const LibraryStoreError&) {
            reading->failure = fmt::format(
                "“{}” was saved by a newer version of Pallisande and can’t be restored by this one.", name);
        } catch (const Base::DecodingError&) {
            reading->failure = fmt::format("“{}” is damaged and can’t be restored.", name);
        } catch (const std::system_error& error) {
            reading->failure = error.code().value() == ENOENT
                ? fmt::format("“{}” isn’t there any more.", name)
                : fmt::format("“{}” couldn’t be read: {}", name, error.what());
        } catch (const std::exception& error) {
            reading->failure = fmt::format("“{}” couldn’t be read: {}", name, error.what());
        }
    };
}

void LibraryCopies::wasRead(const Reading& reading)
{
    for (auto& copy : m_all) {
        if (copy.file != reading.file)
            continue;
        copy.failure = reading.failure;
        copy.contents = reading.failure.empty() ? std::optional(reading.contents) : std::nullopt;
        emit m_model.copiesChanged();
        return;
    }
}

void LibraryCopies::readNext()
{
    const auto next
        = std::find_if(m_all.begin(), m_all.end(), [](const Copy& copy) { return copy.isBeingRead(); });
    if (next == m_all.end())
        return;
    const auto reading = std::make_shared<Reading>(Reading { .file = next->file });
    m_model.inBackground(
        [reading, work = read(reading, m_model.moment())] {
            work();
            reading->library.reset(); // Sixty large libraries aren't kept.
        },
        [this, reading, run = std::weak_ptr(m_run)] {
            if (run.expired())
                return;
            wasRead(*reading);
            if (!run.expired()) // Whoever heard of it may have listed them anew.
                readNext();
        });
}

// --- Comparing

void LibraryCopies::compare(const fs::path& file, std::function<void(const Comparison&)> done)
{
    m_wanted = { file, std::move(done) };
    if (!m_isComparing)
        compareNext();
}

void LibraryCopies::compareNext()
{
    if (!m_wanted)
        return;
    const auto reading = std::make_shared<Reading>(Reading { .file = m_wanted->file });
    m_isComparing = true;
    m_model.inBackground(read(reading, m_model.moment()), [this, reading] {
        m_isComparing = false;
        if (m_wanted && m_wanted->file == reading->file) {
            const auto wanted = *std::exchange(m_wanted, std::nullopt);
            wasRead(*reading);
            wanted.done(comparison(*reading));
        }
        // To let go of a large library takes a moment, too.
        m_model.inBackground(
            [library = std::shared_ptr<Library>(std::move(reading->library))]() mutable { library.reset(); },
            [] {});
        if (!m_isComparing)
            compareNext();
    });
}

// Memory holds nothing to compare with when the library couldn't be read.
bool LibraryCopies::isLibraryKnown() const
{
    const auto reason = m_model.readOnly();
    return m_model.hasLibrary() && reason != ReadOnlyReason::newerVersion
        && reason != ReadOnlyReason::unreadable && reason != ReadOnlyReason::missingFile;
}

LibraryCopies::Comparison LibraryCopies::comparison(const Reading& reading) const
{
    if (!reading.failure.empty())
        return { .failure = reading.failure };
    const auto asNumber = [](std::size_t count) { return static_cast<std::int64_t>(count); };
    if (!isLibraryKnown()) {
        const auto& [clients, jobs, documents, last] = reading.contents;
        return { .differences
            = { { "In this copy",
                { counted(asNumber(clients), "client", "clients"), counted(asNumber(jobs), "job", "jobs"),
                    counted(asNumber(documents), "issued document", "issued documents") } } } };
    }
    const auto year = m_model.services().calendar.day(m_model.services().now()).year;
    const auto found = Pallisande::compare(m_model.library(), *reading.library, year);
    if (found.isSame())
        return { .isSame = true };
    Comparison result;
    auto& all = result.differences;
    add(all, "Clients", found.clients, nameOfRecord);
    add(all, "Jobs", found.jobs, nameOfRecord);
    add(all, "Documents", found.documents, nameOfRecord);
    const auto isIssued = [](const Invoice* document) { return document->isIssued(); };
    if (std::any_of(found.documents.gone.begin(), found.documents.gone.end(), isIssued))
        all.back().lines.emplace_back(
            "The PDFs of issued documents stay. Their records can be taken over from "
            "the issue log afterwards.");
    add(all, "Payments", found.payments, [&](const LibraryComparison::PaymentOf& paid) {
        return fmt::format("{} for {}", m_model.formats().money(paid.payment->amount, paid.invoice->currency),
            nameOf(*paid.invoice));
    });
    Difference numbers { .about = "Next numbers" };
    for (const auto& [series, present, other] : found.nextNumbers)
        numbers.lines.push_back(present == other
                ? fmt::format("{}: {}, as now", titleOf(series), other)
                : fmt::format("{}: {}; now it is {}", titleOf(series), other, present));
    all.push_back(std::move(numbers));
    Difference others { .about = "Also different" };
    if (found.hasOtherProfile)
        others.lines.emplace_back("Your business details and the settings of invoices");
    if (found.hasOtherRates)
        others.lines.emplace_back("Exchange rates");
    if (found.hasOtherCounting)
        others.lines.emplace_back("The settings of counting and the rate cards");
    if (!others.lines.empty())
        all.push_back(std::move(others));
    return result;
}

// --- Documents without a record

void LibraryCopies::lookForUnrecorded()
{
    struct Found {
        std::vector<Ledger::IssuePlan> documents;
    };
    const auto found = std::make_shared<Found>();
    m_look = std::make_shared<int>();
    const auto tell = [this, found, look = std::weak_ptr(m_look)] {
        if (look.expired() || (m_unrecorded.empty() && found->documents.empty()))
            return;
        m_unrecorded = std::move(found->documents);
        m_model.invoices().outdate(); // The numbering names them.
        emit m_model.unrecordedChanged();
    };
    if (!isLibraryKnown())
        return tell();
    m_model.inBackground(
        [found, store = m_model.session()->store(), recorded = issuedNumbers(m_model.library()),
            moment = m_model.moment()] {
            try {
                found->documents = unrecordedDocuments(store, recorded, moment);
            } catch (const std::exception&) { // Without a log that can be read nothing can be taken over.
            }
        },
        tell);
}

std::vector<std::string> LibraryCopies::unrecorded() const
{
    std::vector<std::string> numbers;
    for (const auto& plan : m_unrecorded)
        numbers.push_back(plan.document.number.value_or(""));
    return numbers;
}

bool LibraryCopies::takeOver()
{
    Edit edit { .name = "Taking Over", .touchesProfile = true, .isFinal = true, .savesAtOnce = true };
    for (const auto& plan : m_unrecorded) {
        edit.touches.push_back({ RecordKind::invoice, plan.document.id });
        for (const auto& change : plan.jobs)
            edit.touches.push_back({ RecordKind::job, change.id });
    }
    std::vector<std::string> numbers;
    const bool isDone
        = m_model.perform(edit, [&](LibrarySession& session) { numbers = session.takeOver(m_unrecorded); });
    lookForUnrecorded();
    if (!isDone)
        return false;
    const bool isOne = numbers.size() == 1;
    m_model.tell(
        Notice { .text = fmt::format("{} {} taken over from the issue log. Payments that were recorded "
                                     "for {} aren’t in it.",
                     enumerated(numbers), isOne ? "was" : "were", isOne ? "it" : "them") });
    return true;
}

} // namespace Pallisande
