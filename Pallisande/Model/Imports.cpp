#include "Pallisande/Model/Imports.h"

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/JobSection.h"
#include "Pallisande/Model/RememberedMappings.h"

#include "Base/DurableFile.h"
#include "PallisandeKit/Analyses/Importer.h"

#include <fmt/format.h>

#include <algorithm>

namespace Pallisande {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view chooseMessage
    = "Choose a CAT analysis: Trados Studio XML, memoQ CSV, or Phrase CSV or JSON.";

bool holds(const fs::path& file, const std::string& bytes)
{
    try {
        return Base::fileSize(file) == std::ssize(bytes) && Base::readFile(file).bytes == bytes;
    } catch (const std::exception&) { // A copy that is gone is not the same.
        return false;
    }
}

} // namespace

// What is read off the main thread.
struct Imports::Reading {
    PendingImport pending;
    fs::path file;
    std::vector<fs::path> copies; // Of the reports that the job has.
    Base::Instant now;
    std::optional<ColumnMapping> mapping;
    std::string failure;

    void run()
    {
        try {
            if (!pending.data)
                pending.data = Importer::load(file);
            pending.isThereAlready = pending.isThereAlready
                || std::any_of(copies.begin(), copies.end(),
                    [&](const fs::path& copy) { return holds(copy, *pending.data); });
            if (mapping)
                pending.result = Importer::importMapped(*pending.data, pending.fileName, *mapping, now);
            else if (pending.replaces)
                pending.result = NeedsMapping { Importer::guess(*pending.data, pending.fileName),
                    fmt::format("Say what each column of “{}” holds.", pending.fileName) };
            else
                pending.result = Importer::import(*pending.data, pending.fileName, now);
        } catch (const std::exception& error) {
            failure = error.what();
        }
    }
};

void Imports::choose(const Base::Uuid& jobID)
{
    if (!m_model.requireEditing())
        return;
    m_model.choose({ .kind = ChooserRequest::Kind::report, .message = std::string(chooseMessage) },
        [this, jobID](const AppServices::Paths& paths) { read(jobID, paths); });
}

void Imports::read(const Base::Uuid& jobID, const std::vector<fs::path>& files)
{
    const auto* const job = m_model.job(jobID);
    if (!m_model.requireEditing() || m_pending || m_isReading)
        return;
    if (!job) {
        m_model.refuse(LedgerError::notFound().what());
        return;
    }
    if (const auto lock = m_model.jobs().lockText(*job)) {
        m_model.refuse(*lock);
        return;
    }
    m_jobID = jobID;
    m_waiting = { files.begin(), files.end() };
    m_number = 0;
    m_count = files.size();
    readNext();
}

void Imports::readNext()
{
    const auto* const job = m_model.job(m_jobID);
    if (m_waiting.empty() || !job)
        return m_waiting.clear();
    const auto reading = std::make_shared<Reading>();
    reading->file = m_waiting.front();
    m_waiting.pop_front();
    auto& pending = reading->pending;
    pending = { .id = Base::Uuid::random(),
        .jobID = m_jobID,
        .fileName = Importer::displayName(reading->file),
        .result = ImportFailed {},
        .number = ++m_number,
        .count = m_count };
    for (const auto& analysis : job->analyses) {
        pending.isThereAlready = pending.isThereAlready || analysis.name == pending.fileName;
        if (analysis.storedCopy)
            reading->copies.push_back(m_model.session()->store().resolve(*analysis.storedCopy));
    }
    reading->now = m_model.moment().now;
    m_isReading = true;
    emit m_model.importChanged();
    m_model.inBackground([reading] { reading->run(); }, [this, reading] { wasRead(reading); });
}

void Imports::wasRead(const std::shared_ptr<Reading>& reading)
{
    m_isReading = false;
    if (reading->failure.empty())
        return review(std::move(reading->pending));
    m_model.refuse(reading->failure);
    emit m_model.importChanged();
    readNext();
}

void Imports::review(PendingImport pending)
{
    m_pending = std::move(pending);
    if (auto* const asked = std::get_if<NeedsMapping>(&m_pending->result))
        RememberedMappings(*m_model.services().preferences).offer(asked->table.guess);
    if (!m_model.sheet())
        m_model.openSheet(ReviewSheet {});
    emit m_model.importChanged();
}

void Imports::map(const ColumnMapping& mapping)
{
    if (!m_pending || m_isReading)
        return;
    const auto reading = std::make_shared<Reading>();
    reading->pending = *m_pending;
    reading->now = m_model.moment().now;
    reading->mapping = mapping;
    if (const auto* const asked = std::get_if<NeedsMapping>(&m_pending->result))
        reading->pending.mapped = *asked;
    if (auto& mapped = reading->pending.mapped)
        mapped->table.guess = mapping;
    m_isReading = true;
    m_model.inBackground([reading] { reading->run(); },
        [this, reading] {
            m_isReading = false;
            if (!m_pending || m_pending->id != reading->pending.id)
                return;
            const auto* const failed = std::get_if<ImportFailed>(&reading->pending.result);
            if (failed || !reading->failure.empty())
                m_model.refuse(failed ? failed->message : reading->failure);
            else
                m_pending = std::move(reading->pending);
            emit m_model.importChanged();
        });
}

void Imports::mapOtherwise()
{
    if (!m_pending || !m_pending->mapped || m_isReading)
        return;
    m_pending->result = *m_pending->mapped;
    emit m_model.importChanged();
}

void Imports::readTableAs(const TableReading& reading)
{
    struct Rereading {
        std::string data, name;
        TableReading reading;
        MappingTable table;
        std::string failure;

        void run()
        {
            try {
                table = Importer::guess(data, name, reading);
            } catch (const std::exception& error) {
                failure = error.what();
            }
        }
    };
    if (!m_pending || !m_pending->data || m_isReading)
        return;
    const auto another
        = std::make_shared<Rereading>(Rereading { *m_pending->data, m_pending->fileName, reading, {}, {} });
    m_isReading = true;
    m_model.inBackground([another] { another->run(); },
        [this, another, id = m_pending->id] {
            m_isReading = false;
            auto* const asked
                = m_pending && m_pending->id == id ? std::get_if<NeedsMapping>(&m_pending->result) : nullptr;
            if (!asked)
                return;
            if (another->failure.empty()) {
                asked->table = std::move(another->table);
                RememberedMappings(*m_model.services().preferences).offer(asked->table.guess);
                asked->table.guess.reading = another->reading; // Not that of the mapping from before.
                ++m_pending->readings;
            } else {
                m_model.refuse(another->failure);
            }
            emit m_model.importChanged();
        });
}

void Imports::preview(const ColumnMapping& mapping, std::function<void(const Preview&)> answer)
{
    struct Question {
        std::string data, name;
        ColumnMapping mapping;
        Preview preview;

        void run()
        {
            try {
                preview.labels = mapping.labels = Importer::labelsOf(data, mapping);
                const auto result = Importer::importMapped(data, name, mapping, {});
                if (const auto* const analysis = std::get_if<Analysis>(&result)) {
                    preview.files = analysis->rows.size();
                    preview.totals = analysis->totals();
                } else {
                    preview.refusal = std::get<ImportFailed>(result).message;
                }
            } catch (const std::exception& error) {
                preview.refusal = error.what();
            }
        }
    };
    if (!m_pending || !m_pending->data)
        return;
    const auto question
        = std::make_shared<Question>(Question { *m_pending->data, m_pending->fileName, mapping, {} });
    const auto number = ++m_previews;
    m_model.inBackground([question] { question->run(); },
        [this, question, number, answer = std::move(answer)] {
            if (number == m_previews && m_pending)
                answer(question->preview);
        });
}

void Imports::chooseAnother()
{
    if (!m_pending)
        return;
    m_model.choose({ .kind = ChooserRequest::Kind::report, .message = std::string(chooseMessage) },
        [this](const AppServices::Paths& paths) {
            m_waiting.push_front(paths.front());
            m_number -= m_number > 0;
            discard();
        });
}

std::optional<Base::Decimal> Imports::priceWith(bool replacesOthers) const
{
    const auto* const analysis = m_pending ? std::get_if<Analysis>(&m_pending->result) : nullptr;
    const auto* const job = analysis ? m_model.job(m_pending->jobID) : nullptr;
    if (!job)
        return std::nullopt;
    auto priced = *job;
    if (replacesOthers)
        priced.analyses.clear();
    std::erase_if(priced.analyses, [&](const Analysis& other) { return m_pending->replaces == other.id; });
    priced.analyses.push_back(*analysis);
    const auto price = m_model.jobs().price(priced);
    return price.subtotal + price.minimumAdjustment;
}

bool Imports::accept(bool replacesOthers)
{
    const auto* const analysis = m_pending ? std::get_if<Analysis>(&m_pending->result) : nullptr;
    if (!analysis)
        return false;
    const auto pending = *m_pending;
    const auto id = pending.jobID;
    const bool isDone = m_model.perform(
        { .name = "Attach Analysis", .touches = { { RecordKind::job, id } }, .savesAtOnce = true },
        [&](LibrarySession& session) {
            const auto* const job = m_model.job(id);
            if (!job)
                throw LedgerError::notFound();
            if (const auto lock = m_model.jobs().lockText(*job))
                throw LedgerError::invalid(*lock);
            const auto before = *job;
            auto without = before;
            std::erase_if(without.analyses,
                [&](const Analysis& other) { return replacesOthers || pending.replaces == other.id; });
            if (without.analyses.size() < before.analyses.size())
                session.change([&](Library& library) { *library.job(id) = std::move(without); });
            try {
                session.attachAnalysis(id, *analysis, pending.data.value_or(""), pending.fileName);
            } catch (...) { // Attached and not saved, it stays; else nothing has changed.
                const bool isAttached
                    = std::any_of(m_model.job(id)->analyses.begin(), m_model.job(id)->analyses.end(),
                        [&](const Analysis& other) { return other.id == analysis->id; });
                if (!isAttached && session.hasUnsavedChanges())
                    session.change([&](Library& library) { *library.job(id) = before; });
                throw;
            }
        });
    if (isDone && pending.mapped)
        RememberedMappings(*m_model.services().preferences).keep(pending.mapped->table.guess);
    if (isDone)
        discard();
    return isDone;
}

void Imports::discard()
{
    m_pending.reset();
    if (m_model.sheet() && std::holds_alternative<ReviewSheet>(*m_model.sheet()))
        m_model.closeSheet();
    emit m_model.importChanged();
    readNext();
}

void Imports::mapAgain(const Base::Uuid& jobID, const Base::Uuid& analysisID)
{
    const auto* const job = m_model.job(jobID);
    if (!m_model.requireEditing() || m_pending || m_isReading || !job)
        return;
    const auto analysis = std::find_if(job->analyses.begin(), job->analyses.end(),
        [&](const Analysis& other) { return other.id == analysisID && other.storedCopy; });
    if (analysis == job->analyses.end())
        return;
    const auto reading = std::make_shared<Reading>();
    reading->file = m_model.session()->store().resolve(*analysis->storedCopy);
    reading->now = m_model.moment().now;
    reading->pending = { .id = Base::Uuid::random(),
        .jobID = jobID,
        .fileName = analysis->name,
        .result = ImportFailed {},
        .replaces = analysisID };
    m_isReading = true;
    emit m_model.importChanged();
    m_model.inBackground([reading] { reading->run(); }, [this, reading] { wasRead(reading); });
}

} // namespace Pallisande
