#include "Pallisande/Model/ClientSection.h"
#include "Pallisande/Model/DocumentCounts.h"
#include "Pallisande/Model/JobSection.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Sheets/CountedFiles.h"
#include "Pallisande/Sheets/JobForm.h"
#include "Pallisande/Sheets/SheetMemory.h"
#include "Pallisande/Sheets/Sheets.h"
#include "Pallisande/Widgets/Label.h"
#include "Pallisande/Widgets/NoteLine.h"

#include <QPushButton>
#include <QVBoxLayout>

#include <fmt/format.h>

namespace Pallisande {

namespace {

constexpr std::size_t mostNotes = 20;

struct KeptCount {
    NewJob entries;
    std::string proposedTitle; // That it was opened with.
};

QString titleFor(const DocumentCounts::Finished& finished)
{
    return finished.purpose == DocumentCounts::Purpose::attach ? QStringLiteral("Attach the Count")
                                                               : QStringLiteral("Make a Job from the Count");
}

// A count that becomes a job, or goes to one. The files that are left out are counted by nobody, so what
// repeats is looked for again in the others.
class MakeJobDialog : public SheetDialog {
public:
    MakeJobDialog(AppModel& model, const DocumentCounts::Finished& finished, QWidget* window)
        : SheetDialog(titleFor(finished), {}, Width::medium, window)
        , m_model(model)
        , m_jobID(finished.purpose == DocumentCounts::Purpose::attach ? finished.jobID : std::nullopt)
        , m_files(new CountedFiles(finished.paths, finished.batch, model.formats(), this))
        , m_parts(makeSentence({}, this, TextStyle::body, Ink::muted))
        , m_bands(makeSentence({}, this))
        , m_price(new Label(this, TextStyle::bodyStrong))
        , m_approximate(new NoteLine(Icon::info, Tone::blue,
              QStringLiteral("PDF counts come from the text layer and are approximate (≈)."), this))
    {
        setObjectName(QStringLiteral("makeJobSheet"));
        m_asked = finished.paths;
        m_bands->setObjectName(QStringLiteral("countBands"));
        m_price->setObjectName(QStringLiteral("countPrice"));
        content()->setSpacing(Space::medium);
        if (!m_jobID)
            addForm(finished);
        else if (const auto* const job = model.job(*m_jobID))
            setSentence(QStringLiteral("The count is priced and attached to “%1”.").arg(qt(jobTitle(*job))));
        content()->addWidget(m_files);
        content()->addWidget(m_parts);
        content()->addWidget(m_approximate);
        addNotes(finished.batch);
        auto* result = new QVBoxLayout;
        result->setSpacing(Space::tiny);
        result->addWidget(m_bands);
        result->addWidget(m_price);
        content()->addLayout(result);

        m_default = setDefault(m_jobID ? QStringLiteral("Attach to Job") : QStringLiteral("Make Job"),
            [this] { return carryOut(); });
        m_default->setObjectName(QStringLiteral("makeJobDefault"));
        if (!m_form)
            setFirstField(m_default);
        connect(m_files, &CountedFiles::takenChanged, this, [this] { takeFiles(); });
        connect(&model, &AppModel::countingChanged, this, [this] { countsCame(); });
        connect(this, &QDialog::rejected, this, [this] {
            if (m_form)
                SheetMemory::of(m_model).keep(
                    Base::Uuid {}, KeptCount { m_form->entries(), m_proposedTitle });
            if (m_model.sheet() && std::holds_alternative<MakeJobSheet>(*m_model.sheet()))
                m_model.closeSheet();
        });
        refresh();
    }

private:
    DocumentCounts& counts() { return m_model.counts(); }

    void addForm(const DocumentCounts::Finished& finished)
    {
        m_form = new JobForm(m_model, this);
        auto entries = m_model.jobs().proposal();
        if (finished.paths.size() == 1)
            m_proposedTitle = finished.paths.front().stem().string();
        entries.title = m_proposedTitle;
        if (const auto* const kept = SheetMemory::of(m_model).find<KeptCount>({})) {
            entries = kept->entries;
            if (m_proposedTitle != kept->proposedTitle) // Other documents.
                entries.title = m_proposedTitle;
        }
        m_form->setEntries(entries);
        content()->addWidget(m_form);
        setFirstField(m_form->firstField());
        connect(m_form, &JobForm::changed, this, [this] { refresh(); });
        connect(m_form, &JobForm::newClientWanted, this, [this] {
            reject();
            m_model.clients().add();
        });
    }

    void addNotes(const Tamberlin::BatchCount& batch)
    {
        auto* notes = new QVBoxLayout;
        notes->setSpacing(Space::tiny);
        std::size_t left = 0;
        const auto add = [&](Icon mark, Tone tone, const std::string& sentence) {
            if (static_cast<std::size_t>(notes->count()) < mostNotes)
                notes->addWidget(new NoteLine(mark, tone, qt(sentence), this));
            else
                ++left;
        };
        for (const auto& [file, message] : batch.failures)
            add(Icon::warning, Tone::amber, sentence(UnreadableFile { file, message }));
        for (const auto& file : batch.files) {
            for (const auto& note : file.notes)
                add(Icon::info, Tone::grey, fmt::format("{}: {}", file.name, note));
        }
        if (left > 0)
            notes->addWidget(new NoteLine(Icon::info, Tone::grey,
                QStringLiteral("%1 more notes are kept with the analysis.").arg(left), this));
        if (notes->count())
            content()->addLayout(notes);
    }

    // Nothing is counted anew while a count is under way; when that is done, what was clicked meanwhile is.
    void takeFiles()
    {
        const auto taken = m_files->taken();
        if (!taken.empty() && !counts().progress()) {
            showError({});
            m_asked = taken;
            counts().take(taken);
        }
        refresh();
    }

    void countsCame()
    {
        const auto& finished = counts().finished();
        if (!finished || counts().progress())
            return refresh();
        m_files->setCounts(finished->paths, finished->batch);
        refresh();
        QMetaObject::invokeMethod(
            this, [this] { checkFiles(); }, Qt::QueuedConnection);
    }

    // After a count, when the model has said all that it has to say about it.
    void checkFiles()
    {
        const auto taken = m_files->taken();
        if (counts().progress() || !counts().finished() || isSettled() || taken.empty())
            return;
        if (taken != m_asked)
            takeFiles();
        else
            showError(QStringLiteral("Some of these files couldn’t be counted again. Leave them out."));
    }

    bool isSettled()
    {
        return counts().finished() && !counts().progress() && m_files->taken() == counts().finished()->paths;
    }

    void refresh()
    {
        const bool isSettled = this->isSettled();
        const auto clientID = m_form ? m_form->entries().clientID : Base::Uuid {};
        m_default->setEnabled(isSettled && (m_jobID || !clientID.isNil()));
        m_approximate->setVisible(counts().isApproximate());
        if (m_files->taken().empty()) {
            m_bands->setText(QStringLiteral("Choose at least one file."));
            m_price->clear();
            return;
        }
        if (!isSettled) {
            m_bands->setText(QStringLiteral("Counting again…"));
            return;
        }
        const auto* const job = m_jobID ? m_model.job(*m_jobID) : nullptr;
        const auto* const client = m_model.client(job ? job->clientID : clientID);
        showParts(counts().finished()->batch);
        showBands(client ? client->unit : RateUnit::word);
        showPrice(job, client);
    }

    void showParts(const Tamberlin::BatchCount& batch)
    {
        Base::EnumMap<Tamberlin::Part, std::int64_t> words;
        for (const auto& file : batch.files)
            file.byPart.forEach([&](Tamberlin::Part part, const Tamberlin::TextStats& stats) {
                words[part] = words.valueOr(part, 0) + stats.words;
            });
        const auto& included = m_model.library().counting.options.included;
        std::string text;
        words.forEach([&](Tamberlin::Part part, std::int64_t count) {
            text += fmt::format("{}{} {}{}", text.empty() ? "Words: " : " · ", title(part),
                m_model.formats().count(count),
                included.contains(part) || part == Tamberlin::Part::body ? "" : " (not counted)");
        });
        m_parts->setText(qt(text));
        m_parts->setVisible(!text.empty());
    }

    void showBands(RateUnit unit)
    {
        const auto totals = counts().totals();
        const auto name = unit == RateUnit::character ? "characters" : "words";
        m_bands->setText(qt(fmt::format("Repetitions {} {}, No match {} {}",
            m_model.formats().count(totals.count(MatchBand::repetitions, unit)), name,
            m_model.formats().count(totals.count(MatchBand::noMatch, unit)), name)));
    }

    void showPrice(const Job* job, const Client* client)
    {
        const auto price = job ? counts().priceWith(job->id)
            : m_form           ? counts().priceFor(m_form->entries())
                               : std::nullopt;
        if (!price || !client)
            return m_price->clear();
        const auto& formats = m_model.formats();
        const auto then = formats.money(*price, client->currency);
        if (!job)
            return m_price->setText(qt(fmt::format("Price: {} before tax", then)));
        const auto now = m_model.jobs().price(*job);
        m_price->setText(qt(fmt::format("Price: now {} → {} before tax",
            formats.amount(now.subtotal + now.minimumAdjustment, now.currency), then)));
    }

    QString carryOut()
    {
        if (m_form && !m_form->commit())
            return QStringLiteral("Mend what is marked above first.");
        const bool isDone = m_jobID ? counts().attach(*m_jobID) : counts().makeJob(m_form->entries());
        if (isDone)
            SheetMemory::of(m_model).forget<KeptCount>({});
        if (isDone)
            return {};
        return m_model.problem() ? qt(m_model.problem()->text)
                                 : QStringLiteral("The count couldn’t be taken over.");
    }

    AppModel& m_model;
    std::optional<Base::Uuid> m_jobID; // That the count goes to; absent: a new one.
    JobForm* m_form = nullptr;
    CountedFiles* m_files;
    Label *m_parts, *m_bands, *m_price;
    NoteLine* m_approximate;
    QPushButton* m_default = nullptr;
    std::string m_proposedTitle;
    CountedFiles::Paths m_asked; // Of the last count.
};

} // namespace

SheetDialog* makeSheet(AppModel& model, const MakeJobSheet&, QWidget* window)
{
    static const DocumentCounts::Finished nothing;
    const auto& finished = model.counts().finished();
    return new MakeJobDialog(model, finished ? *finished : nothing, window);
}

} // namespace Pallisande
