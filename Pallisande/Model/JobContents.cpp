#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/JobSection.h"

#include <algorithm>
#include <set>

// What a job consists of: its extra lines and its analyses.
namespace Pallisande {

namespace {

template <typename Lines> auto lineOf(Lines& lines, const Base::Uuid& id)
{
    const auto found
        = std::find_if(lines.begin(), lines.end(), [&](const auto& line) { return line.id == id; });
    if (found == lines.end())
        throw LedgerError::notFound();
    return found;
}

} // namespace

// --- Extra lines

bool JobSection::addExtra(const Base::Uuid& id, ExtraLine line)
{
    line.id = Base::Uuid::random();
    return editAlone(id, "Add Extra Line", [&](Job& job) { job.extras.push_back(line); });
}

bool JobSection::editExtra(
    const Base::Uuid& id, const Base::Uuid& line, const std::function<void(ExtraLine&)>& change)
{
    return edit(id, "Change Extra Line", [&](Job& job) { change(*lineOf(job.extras, line)); });
}

bool JobSection::removeExtra(const Base::Uuid& id, const Base::Uuid& line)
{
    return editAlone(id, "Remove Extra Line", [&](Job& job) { job.extras.erase(lineOf(job.extras, line)); });
}

bool JobSection::moveExtra(const Base::Uuid& id, const Base::Uuid& line, int by)
{
    return edit(id, "Move Extra Line", [&](Job& job) {
        const auto from = lineOf(job.extras, line) - job.extras.begin();
        const auto to = std::clamp<std::ptrdiff_t>(from + by, 0, std::ssize(job.extras) - 1);
        auto moved = std::move(job.extras[static_cast<std::size_t>(from)]);
        job.extras.erase(job.extras.begin() + from);
        job.extras.insert(job.extras.begin() + to, std::move(moved));
    });
}

// --- Analyses

bool JobSection::removeAnalysis(const Base::Uuid& id, const Base::Uuid& analysis)
{
    return editAlone(
        id, "Remove Analysis", [&](Job& job) { job.analyses.erase(lineOf(job.analyses, analysis)); });
}

bool JobSection::renameAnalysis(const Base::Uuid& id, const Base::Uuid& analysis, const std::string& name)
{
    return m_model.change(
        { .name = "Rename Analysis", .field = "Rename Analysis", .touches = { { RecordKind::job, id } } },
        [&](Library& library) { // A name bills nothing: it may change on an invoiced job too.
            auto job = m_model.job(id) ? *m_model.job(id) : throw LedgerError::notFound();
            lineOf(job.analyses, analysis)->name = name;
            Ledger::replaceJob(library, std::move(job), m_model.moment().now);
        });
}

bool JobSection::typeCounts(const Base::Uuid& id, const std::string& name, const BandCounts& counts,
    std::optional<Base::Uuid> replaced)
{
    const auto now = m_model.moment().now;
    const auto title = name.empty() ? std::string(label(AnalysisSource::manual)) : name;
    Analysis analysis { .id = replaced.value_or(Base::Uuid::random()),
        .source = AnalysisSource::manual,
        .name = title,
        .importedAt = now,
        .rows = { { .id = Base::Uuid::random(), .file = title, .counts = counts } } };
    const bool isDone = m_model.change(
        { .name = "Type Counts In", .touches = { { RecordKind::job, id } }, .savesAtOnce = true },
        [&](Library& library) {
            const auto* const job = m_model.job(id);
            if (!job)
                throw LedgerError::notFound();
            if (const auto lock = lockText(*job))
                throw LedgerError::invalid(*lock);
            if (sum(counts.words) == 0 && sum(counts.segments) == 0 && sum(counts.characters) == 0)
                throw LedgerError::invalid("Type at least one count above 0.");
            if (!replaced)
                return Ledger::attachAnalysis(library, id, analysis, now);
            auto edited = *job;
            *lineOf(edited.analyses, *replaced) = analysis;
            Ledger::replaceJob(library, std::move(edited), now);
        });
    if (isDone)
        m_model.closeSheet();
    return isDone;
}

std::optional<Base::Decimal> JobSection::priceWith(
    const Base::Uuid& id, const BandCounts& counts, std::optional<Base::Uuid> replaced) const
{
    const auto* const job = m_model.job(id);
    if (!job || !m_model.client(job->clientID))
        return std::nullopt;
    auto with = *job;
    if (replaced)
        std::erase_if(with.analyses, [&](const Analysis& analysis) { return analysis.id == *replaced; });
    with.analyses.push_back({ .rows = { { .counts = counts } } });
    const auto price = this->price(with);
    return price.subtotal + price.minimumAdjustment;
}

BandCounts JobSection::counts(const Job& job) const
{
    BandCounts counts;
    for (const auto& analysis : job.analyses)
        counts.add(analysis.totals());
    return counts;
}

std::vector<std::string> JobSection::languages() const
{
    std::set<std::string> found;
    const auto take = [&](const LanguagePair& pair) { found.insert({ pair.source, pair.target }); };
    for (const auto& job : m_model.library().jobs)
        take(job.pair);
    for (const auto& client : m_model.library().clients) {
        for (const auto& rate : client.rates)
            take(rate.pair);
    }
    found.erase("");
    return { found.begin(), found.end() };
}

void JobSection::showReport(const Base::Uuid& id, const Base::Uuid& analysis)
{
    const auto* const job = m_model.job(id);
    if (!job || !m_model.hasLibrary())
        return;
    for (const auto& attached : job->analyses) {
        if (attached.id == analysis && attached.storedCopy)
            m_model.services().openFile(m_model.session()->store().resolve(*attached.storedCopy));
    }
}

} // namespace Pallisande
