#include "Pallisande/Model/ClientSection.h"
#include "Pallisande/Model/Imports.h"
#include "Pallisande/Model/JobSection.h"
#include "Pallisande/Screens/AnalysisFigures.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Sheets/MappingForm.h"
#include "Pallisande/Sheets/ReviewTable.h"
#include "Pallisande/Sheets/Sheets.h"
#include "Pallisande/Widgets/BandBar.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/Chip.h"
#include "Pallisande/Widgets/ComboBox.h"
#include "Pallisande/Widgets/EmptyPage.h"
#include "Pallisande/Widgets/Label.h"
#include "Pallisande/Widgets/NoteLine.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <fmt/format.h>

namespace Pallisande {

namespace {

constexpr std::size_t mostChecks = 5, mostNotes = 20; // A report may have thousands.

bool isFailed(const PendingImport& pending) { return std::holds_alternative<ImportFailed>(pending.result); }

// A report on its way to a job: what its columns hold, if nobody knows, then what it says. It stays open
// while one leads to the other.
class ReviewDialog : public SheetDialog {
public:
    ReviewDialog(AppModel& model, const PendingImport& pending, QWidget* window)
        : SheetDialog(isFailed(pending) ? QStringLiteral("This Report Can’t Be Imported")
                                        : QStringLiteral("Review the Analysis"),
            {}, isFailed(pending) ? Width::medium : Width::large, window)
        , m_model(model)
        , m_id(pending.id)
        , m_back(makeButton(QStringLiteral("Map the Columns Otherwise…"), ButtonKind::quiet, this))
        , m_sum(new Label({}, this, TextStyle::body, Ink::muted))
        , m_default(setDefault(QStringLiteral("Attach to Job"), [] { return QString(); }))
    {
        setObjectName(QStringLiteral("reviewSheet"));
        m_back->setObjectName(QStringLiteral("mapOtherwise"));
        m_sum->setObjectName(QStringLiteral("mappedSum"));
        m_default->setObjectName(QStringLiteral("reviewDefault"));
        m_sum->setContentsMargins(Space::small, 0, 0, 0); // At the margin, where the button's text is.
        addAside(m_back);
        addAside(m_sum);
        setFirstField(m_default);
        // Not every step ends the sheet, so the button is answered here.
        disconnect(m_default, &QPushButton::clicked, this, nullptr);
        connect(m_default, &QPushButton::clicked, this, [this] { goOn(); });
        connect(m_back, &QPushButton::clicked, this, [this] { imports().mapOtherwise(); });
        connect(&model, &AppModel::importChanged, this, [this] { refresh(); });
        connect(this, &QDialog::rejected, this, [this] {
            if (isMine())
                imports().discard();
        });
        if (isFailed(pending))
            cancelButton()->setText(QStringLiteral("Close"));
        else if (pending.number < pending.count)
            cancelButton()->setText(QStringLiteral("Skip This Report"));
        refresh();
    }

private:
    Imports& imports() { return m_model.imports(); }
    const PendingImport& pending() { return *imports().pending(); }
    bool isMine() { return imports().pending() && imports().pending()->id == m_id; }

    void refresh()
    {
        if (!isMine())
            return;
        m_default->setEnabled(!imports().isReading());
        const auto* const asked = std::get_if<NeedsMapping>(&pending().result);
        const std::pair shown { pending().result.index(), pending().readings };
        if (m_body && m_shown == shown) {
            if (m_mapping && asked)
                m_mapping->showReading(asked->table);
            if (const auto& problem = m_model.problem(); problem && problem->isInSheet)
                showError(qt(problem->text));
            return;
        }
        m_shown = shown;
        const auto focused = focusWidget() ? focusWidget()->objectName() : QString();
        delete m_body;
        m_body = new QWidget(this);
        m_mapping = nullptr;
        m_replaces = nullptr;
        auto* box = new QVBoxLayout(m_body);
        box->setContentsMargins(0, 0, 0, 0);
        box->setSpacing(Space::medium);
        content()->addWidget(m_body);
        const auto* const analysis = std::get_if<Analysis>(&pending().result);
        m_back->setVisible(analysis && pending().mapped);
        m_sum->setVisible(asked);
        if (analysis)
            showAnalysis(*analysis, *box);
        else if (asked)
            showMapping(*asked, *box, focused);
        else
            showFailure(std::get<ImportFailed>(pending().result), *box);
        showError({});
    }

    // "Report 1 of 3" before the sentence that stands under the title.
    void explain(const QString& sentence)
    {
        const auto& [number, count] = std::pair(pending().number, pending().count);
        setSentence(count > 1 ? QStringLiteral("Report %1 of %2. %3").arg(number).arg(count).arg(sentence)
                              : sentence);
    }

    void goOn()
    {
        if (!isMine())
            return;
        if (m_mapping) {
            if (m_mapping->countsSomething())
                imports().map(m_mapping->mapping());
            else
                showError(QStringLiteral("Choose at least one column of words or characters."));
        } else if (isFailed(pending())) {
            imports().chooseAnother();
        } else if (imports().accept(m_replaces && m_replaces->isChecked())) {
            accept();
        } else if (m_model.problem()) {
            showError(qt(m_model.problem()->text));
        }
    }

    // --- An analysis

    void showAnalysis(const Analysis& analysis, QVBoxLayout& box)
    {
        const auto* const job = m_model.job(pending().jobID);
        const auto* const client = job ? m_model.client(job->clientID) : nullptr;
        explain(QStringLiteral("“%1” → %2 (%3)")
                    .arg(qt(pending().fileName), job ? qt(jobTitle(*job)) : QString(),
                        client ? qt(client->name) : QString()));
        m_default->setText(QStringLiteral("Attach to Job"));
        const bool isByCharacter = client && client->unit == RateUnit::character;
        m_table = new ReviewTable(analysis, m_model.formats(), m_body);
        m_bar = new BandBar(m_body);
        m_facts = new Label(m_body, TextStyle::body, Ink::muted);
        m_metric = new ComboBox(m_body);
        m_metric->setAccessibleName(QStringLiteral("What the table shows"));
        m_metric->setObjectName(QStringLiteral("reviewMetric"));
        const auto totals = analysis.totals();
        for (const auto metric : { CountMetric::words, CountMetric::segments, CountMetric::characters }) {
            if (metric != CountMetric::words && sum(figuresOf(totals, metric)) == 0)
                continue;
            m_metric->addItem(Pallisande::title(metric), static_cast<int>(metric));
            if (metric == CountMetric::characters && isByCharacter)
                m_metric->setCurrentIndex(m_metric->count() - 1);
        }
        connect(m_metric, &QComboBox::currentIndexChanged, m_body, [this] { showMetric(); });

        auto* chips = new QHBoxLayout;
        chips->setSpacing(Space::small);
        chips->addWidget(new ChipLabel({ Tone::grey, Icon::document, qt(label(analysis.source)) }, m_body));
        chips->addWidget(new ChipLabel(Chip::of(verification(analysis.source)), m_body));
        chips->addStretch();
        auto* facts = new QHBoxLayout;
        facts->setSpacing(Space::medium);
        facts->addWidget(m_facts, 1);
        facts->addWidget(m_metric);
        box.addLayout(chips);
        box.addLayout(facts);
        // What is wrong and what it costs first: in a small window the table and the notes are scrolled to.
        addRemarks(
            box, Icon::warning, Tone::amber, analysis.mismatches(), mostChecks,
            [](const SumCheck& check) { return check.sentence(); },
            "%1 more totals don’t match; the last column of the table shows by how much.");
        if (client && client->basis == WordBasis::target)
            box.addWidget(new NoteLine(
                Icon::info, Tone::blue, QStringLiteral("Target basis: bands shown for reference"), m_body));
        addChoice(job, box);
        m_price = new Label(m_body, TextStyle::bodyStrong);
        m_price->setObjectName(QStringLiteral("reviewPrice"));
        box.addWidget(m_price);
        box.addSpacing(Space::tiny);
        box.addWidget(m_bar);
        box.addWidget(m_table);
        addRemarks(
            box, Icon::info, Tone::grey, analysis.notes, mostNotes,
            [](const ImportNote& note) { return sentence(note); },
            "%1 more notes are kept with the analysis.");
        showMetric();
        showPrice();
    }

    template <typename Remarks, typename Sentence>
    void addRemarks(QVBoxLayout& box, Icon mark, Tone tone, const Remarks& all, std::size_t most,
        Sentence sentenceOf, const char* more)
    {
        auto* lines = new QVBoxLayout;
        lines->setSpacing(Space::tiny);
        for (std::size_t place = 0; place < std::min(all.size(), most); ++place)
            lines->addWidget(new NoteLine(mark, tone, qt(sentenceOf(all[place])), m_body));
        if (all.size() > most)
            lines->addWidget(
                new NoteLine(mark, tone, QString::fromUtf8(more).arg(all.size() - most), m_body));
        box.addLayout(lines);
    }

    // Where the job has analyses, whether they stay.
    void addChoice(const Job* job, QVBoxLayout& box)
    {
        if (!job || job->analyses.empty())
            return;
        if (pending().replaces) {
            box.addWidget(new NoteLine(Icon::info, Tone::grey,
                QStringLiteral("It takes the place of the same report as it was mapped before."), m_body));
            return;
        }
        if (pending().isThereAlready)
            box.addWidget(new NoteLine(Icon::info, Tone::blue,
                QStringLiteral("A report of this name or with the same content is attached already."),
                m_body));
        auto* add = new QRadioButton(QStringLiteral("Add to the analyses there"), m_body);
        m_replaces = new QRadioButton(QStringLiteral("Replace them"), m_body);
        add->setObjectName(QStringLiteral("reviewAdd"));
        m_replaces->setObjectName(QStringLiteral("reviewReplace"));
        (pending().isThereAlready ? m_replaces : add)->setChecked(true);
        auto* choice = new QHBoxLayout;
        choice->setSpacing(Space::large);
        choice->addWidget(add);
        choice->addWidget(m_replaces);
        choice->addStretch();
        box.addLayout(choice);
        connect(m_replaces, &QRadioButton::toggled, m_body, [this] { showPrice(); });
    }

    void showMetric()
    {
        const auto* const analysis = isMine() ? std::get_if<Analysis>(&pending().result) : nullptr;
        if (!analysis)
            return;
        const auto metric = static_cast<CountMetric>(m_metric->currentData().toInt());
        const auto name = std::string(Base::caseName(metric));
        const auto totals = analysis->totals();
        m_bar->setCounts(figuresOf(totals, metric), qt(name));
        m_table->setMetric(metric);
        auto facts = fmt::format("{} · {} {}", counted(std::ssize(analysis->rows), "file", "files"),
            m_model.formats().count(sum(figuresOf(totals, metric))), name);
        if (!analysis->sourceLanguage.empty() || !analysis->targetLanguage.empty())
            facts = fmt::format("{} → {} · {}",
                analysis->sourceLanguage.empty() ? "?" : analysis->sourceLanguage,
                analysis->targetLanguage.empty() ? "?" : analysis->targetLanguage, facts);
        m_facts->setText(qt(facts));
    }

    void showPrice()
    {
        const auto* const job = isMine() ? m_model.job(pending().jobID) : nullptr;
        const auto price = job ? imports().priceWith(m_replaces && m_replaces->isChecked()) : std::nullopt;
        if (!price)
            return m_price->clear();
        const auto now = m_model.jobs().price(*job);
        const auto& formats = m_model.formats();
        m_price->setText(qt(fmt::format("Price: now {} → {} before tax",
            formats.amount(now.subtotal + now.minimumAdjustment, now.currency),
            formats.money(*price, now.currency))));
    }

    // --- A table that isn't known

    // The focus stays in a field of that name.
    void showMapping(const NeedsMapping& asked, QVBoxLayout& box, const QString& focused)
    {
        explain(qt(asked.reason));
        m_default->setText(QStringLiteral("Continue"));
        m_mapping = new MappingForm(asked.table, m_body);
        box.addWidget(m_mapping);
        if (auto* first = m_mapping->firstField()) {
            setFirstField(first);
            auto* const same = focused.isEmpty() ? nullptr : m_mapping->findChild<QWidget*>(focused);
            (same ? same : first)->setFocus(Qt::OtherFocusReason);
        }
        // Queued: the form that asks for it is made anew.
        QObject::connect(
            m_mapping, &MappingForm::anotherReadingWanted, this,
            [this](const TableReading& reading) { imports().readTableAs(reading); }, Qt::QueuedConnection);
        QObject::connect(m_mapping, &MappingForm::changed, m_body, [this] {
            showError({});
            sumUp();
        });
        sumUp();
    }

    void sumUp()
    {
        const QPointer<ReviewDialog> me(this);
        imports().preview(m_mapping->mapping(), [me](const Imports::Preview& preview) {
            if (me && me->m_mapping)
                me->showSum(preview);
        });
    }

    void showSum(const Imports::Preview& preview)
    {
        m_mapping->setLabels(preview.labels);
        if (!m_mapping->countsSomething() || !preview.refusal.empty())
            return m_sum->setText(QStringLiteral("Nothing adds up yet."));
        std::string parts;
        for (const auto metric : { CountMetric::words, CountMetric::segments, CountMetric::characters }) {
            if (const auto units = sum(figuresOf(preview.totals, metric)))
                parts += fmt::format("{}{} {}", parts.empty() ? "" : ", ", m_model.formats().count(units),
                    Base::caseName(metric));
        }
        m_sum->setText(qt(fmt::format("{} in {}", parts.empty() ? "0 words" : parts,
            counted(static_cast<std::int64_t>(preview.files), "file", "files"))));
    }

    // --- A report that can't be read

    void showFailure(const ImportFailed& failure, QVBoxLayout& box)
    {
        explain({});
        m_default->setText(QStringLiteral("Choose Another File…"));
        box.addWidget(new EmptyPage(Icon::document, qt(failure.message), m_body));
    }

    AppModel& m_model;
    Base::Uuid m_id;
    QPushButton* m_back;
    Label* m_sum;
    QPushButton* m_default;
    QWidget* m_body = nullptr;
    std::pair<std::size_t, std::size_t> m_shown;
    MappingForm* m_mapping = nullptr;
    ReviewTable* m_table = nullptr;
    BandBar* m_bar = nullptr;
    ComboBox* m_metric = nullptr;
    Label *m_facts = nullptr, *m_price = nullptr;
    QRadioButton* m_replaces = nullptr;
};

} // namespace

SheetDialog* makeSheet(AppModel& model, const ReviewSheet&, QWidget* window)
{
    static const PendingImport nothing { .result = ImportFailed {} };
    const auto& pending = model.imports().pending();
    return new ReviewDialog(model, pending ? *pending : nothing, window);
}

} // namespace Pallisande
