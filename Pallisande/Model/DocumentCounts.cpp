#include "Pallisande/Model/DocumentCounts.h"

#include "Pallisande/Model/AppModel.h"

#include "PallisandeKit/Analyses/FileCounting.h"
#include "TamberlinKit/Batch/DocumentList.h"
#include "TamberlinKit/Text/ReadError.h"

#include <algorithm>

namespace Pallisande {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view chooseMessage = "Choose the documents to count (Word, PowerPoint, Excel, "
                                           "OpenDocument, PDF, HTML, RTF, text, subtitles), or "
                                           "folders of them.";
constexpr std::string_view nothingCounted = "None of the chosen files could be counted.";

} // namespace

// One count, off the main thread.
struct DocumentCounts::Run {
    std::vector<fs::path> paths; // As chosen; then those that were counted.
    bool areChosen = true; // Folders among them are walked.
    Tamberlin::CountOptions options;
    std::function<void(Progress)> onProgress;
    std::stop_source stop;
    std::optional<Tamberlin::BatchCount> batch; // Absent: given up, or nothing came of it.

    void run()
    {
        try {
            const auto files = areChosen ? Tamberlin::documentsIn(paths) : paths;
            std::vector<fs::path> counted;
            bool wasRead = false; // The file that progress tells of next.
            batch = Tamberlin::countBatch(files,
                { .counting = options,
                    .onProgress =
                        [&](std::size_t done, std::size_t all) {
                            if (std::exchange(wasRead, false))
                                counted.push_back(files[done - 1]);
                            onProgress({ done, all, files[done - 1].filename().string() });
                        },
                    .onRead = [&](const Tamberlin::Extracted&) { wasRead = true; } },
                stop.get_token());
            paths = std::move(counted);
        } catch (const Tamberlin::Cancelled&) {
        } catch (const std::exception&) {
            batch.emplace();
        }
    }
};

DocumentCounts::DocumentCounts(AppModel& model)
    : m_model(model)
{
}

DocumentCounts::~DocumentCounts()
{
    if (m_run)
        m_run->stop.request_stop();
}

void DocumentCounts::choose(Purpose purpose, std::optional<Base::Uuid> jobID)
{
    if (!m_model.requireEditing())
        return;
    m_model.choose({ .kind = ChooserRequest::Kind::documents, .message = std::string(chooseMessage) },
        [this, purpose, jobID](const AppServices::Paths& paths) { count(paths, purpose, jobID); });
}

void DocumentCounts::count(
    const std::vector<fs::path>& paths, Purpose purpose, std::optional<Base::Uuid> jobID)
{
    if (m_run || !m_model.requireEditing())
        return;
    if (purpose == Purpose::newJob && m_model.library().clients.empty())
        return m_model.jobs().openNewJob(); // Refused, with the reason.
    if (const auto* const job = jobID ? m_model.job(*jobID) : nullptr) {
        if (const auto lock = m_model.jobs().lockText(*job)) {
            m_model.refuse(*lock);
            return;
        }
    }
    m_purpose = purpose;
    m_jobID = jobID;
    m_finished.reset();
    start(paths, true);
}

void DocumentCounts::take(const std::vector<fs::path>& paths)
{
    if (m_run || !m_finished || paths == m_finished->paths)
        return;
    start(paths, false);
}

void DocumentCounts::start(std::vector<fs::path> paths, bool areChosen)
{
    m_run = std::make_shared<Run>();
    m_run->paths = std::move(paths);
    m_run->areChosen = areChosen;
    m_run->options = m_model.library().counting.options;
    m_run->onProgress = [this, &model = m_model](Progress progress) {
        model.onMainThread([this, progress = std::move(progress)] {
            if (m_run) {
                m_progress = progress;
                emit m_model.countingChanged();
            }
        });
    };
    m_progress = Progress {};
    emit m_model.countingChanged();
    m_model.inBackground([run = m_run] { run->run(); }, [this, run = m_run] { wasCounted(run); });
}

void DocumentCounts::cancel()
{
    if (m_run)
        m_run->stop.request_stop();
}

void DocumentCounts::wasCounted(const std::shared_ptr<Run>& run)
{
    m_run.reset();
    m_progress.reset();
    emit m_model.countingChanged();
    if (!run->batch || run->stop.stop_requested())
        return;
    if (run->batch->files.empty()) {
        m_model.refuse(std::string(nothingCounted));
        return;
    }
    if (!run->areChosen && m_finished) // What couldn't be counted is told of all the same.
        run->batch->failures.insert(run->batch->failures.begin(), m_finished->batch.failures.begin(),
            m_finished->batch.failures.end());
    m_finished = { m_purpose, m_jobID, std::move(run->paths), std::move(*run->batch) };
    emit m_model.countingChanged();
    if (run->areChosen && m_purpose == Purpose::target && m_jobID)
        setTarget(*m_jobID);
    else if (run->areChosen)
        m_model.openSheet(MakeJobSheet {});
}

bool DocumentCounts::isApproximate() const
{
    return m_finished
        && std::any_of(m_finished->batch.files.begin(), m_finished->batch.files.end(),
            [](const Tamberlin::FileCount& file) { return file.approximate; });
}

std::optional<Base::Decimal> DocumentCounts::priceFor(const NewJob& entry) const
{
    if (!m_finished || !m_model.client(entry.clientID))
        return std::nullopt;
    const auto price = m_model.jobs().price({ .clientID = entry.clientID,
        .pair = entry.pair,
        .analyses = { FileCounting::analysis(m_finished->batch, m_model.moment().now) } });
    return price.subtotal + price.minimumAdjustment;
}

std::optional<Base::Decimal> DocumentCounts::priceWith(const Base::Uuid& jobID) const
{
    const auto* const job = m_finished ? m_model.job(jobID) : nullptr;
    if (!job)
        return std::nullopt;
    auto priced = *job;
    priced.analyses.push_back(FileCounting::analysis(m_finished->batch, m_model.moment().now));
    const auto price = m_model.jobs().price(priced);
    return price.subtotal + price.minimumAdjustment;
}

BandCounts DocumentCounts::totals() const
{
    return m_finished ? FileCounting::analysis(m_finished->batch, {}).totals() : BandCounts();
}

bool DocumentCounts::makeJob(const NewJob& entry)
{
    if (!m_finished || m_run)
        return false;
    const auto now = m_model.moment().now;
    const auto job = m_model.jobs().made(entry);
    const bool isDone = m_model.change({ .name = "Add Job", .savesAtOnce = true }, [&](Library& library) {
        Ledger::addJob(library, job);
        try {
            Ledger::attachAnalysis(library, job.id, FileCounting::analysis(m_finished->batch, now), now);
        } catch (const LedgerError&) {
            Ledger::deleteJob(library, job.id);
            throw;
        }
    });
    if (!isDone)
        return false;
    m_finished.reset();
    m_model.closeSheet();
    m_model.show(AppSection::jobs, job.id);
    return true;
}

bool DocumentCounts::attach(const Base::Uuid& jobID)
{
    if (!m_finished || m_run)
        return false;
    const auto now = m_model.moment().now;
    const bool isDone = m_model.change(
        { .name = "Attach Analysis", .touches = { { RecordKind::job, jobID } }, .savesAtOnce = true },
        [&](Library& library) {
            const auto* const job = m_model.job(jobID);
            if (!job)
                throw LedgerError::notFound();
            if (const auto lock = m_model.jobs().lockText(*job))
                throw LedgerError::invalid(*lock);
            Ledger::attachAnalysis(library, jobID, FileCounting::analysis(m_finished->batch, now), now);
        });
    if (isDone) {
        m_finished.reset();
        m_model.closeSheet();
    }
    return isDone;
}

bool DocumentCounts::setTarget(const Base::Uuid& jobID)
{
    const auto* const job = m_model.job(jobID);
    const auto* const client = job ? m_model.client(job->clientID) : nullptr;
    if (!m_finished || m_run || !client)
        return false;
    const auto totals = FileCounting::analysis(m_finished->batch, m_model.moment().now).totals();
    const auto units = sum(client->unit == RateUnit::word ? totals.words : totals.characters);
    m_finished.reset();
    m_model.endMerging();
    return m_model.jobs().edit(
        jobID, "Change Target Count", [&](Job& edited) { edited.targetUnits = units; });
}

} // namespace Pallisande
