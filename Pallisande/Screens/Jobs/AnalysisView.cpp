#include "Pallisande/Screens/Jobs/AnalysisView.h"

#include "Pallisande/Screens/AnalysisFigures.h"
#include "Pallisande/Screens/Jobs/FiguresTable.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Chip.h"
#include "Pallisande/Widgets/Label.h"
#include "Pallisande/Widgets/NoteLine.h"
#include "Pallisande/Widgets/TableDelegate.h"

#include <QMenu>
#include <QVBoxLayout>

namespace Pallisande {

AnalysisView::AnalysisView(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_opener(makeIconButton(Icon::chevronRight, QStringLiteral("Show the files"), this))
    , m_more(new QToolButton(this))
    , m_name(new ElidedLabel(this, TextStyle::bodyStrong))
    , m_summary(makeSentence({}, this, TextStyle::small, Ink::muted))
    , m_nameField(new TextField(this))
    , m_verification(new ChipLabel({}, this))
    , m_menu(new QMenu(m_more))
    , m_body(new QWidget(this))
    , m_rows(new FiguresTable(m_body))
    , m_failures(new NoteList(this))
    , m_notes(new NoteList(m_body))
{
    m_opener->setObjectName(QStringLiteral("openAnalysis"));
    m_more->setObjectName(QStringLiteral("moreOfAnalysis"));
    m_more->setText(QStringLiteral("⋯"));
    m_more->setFocusPolicy(Qt::TabFocus);
    m_nameField->setObjectName(QStringLiteral("analysisName"));
    m_nameField->setAccessibleName(QStringLiteral("Name of the analysis"));
    m_nameField->hide();
    m_rows->setObjectName(QStringLiteral("analysisRows"));
    setTight(m_rows);
    m_report = m_menu->addAction(QStringLiteral("Show Report Copy"), this, &AnalysisView::reportWanted);
    m_rename = m_menu->addAction(QStringLiteral("Rename"), this, &AnalysisView::rename);
    m_map = m_menu->addAction(QStringLiteral("Map Again…"), this, &AnalysisView::mapWanted);
    m_changeCounts = m_menu->addAction(QStringLiteral("Change Counts…"), this, &AnalysisView::countsWanted);
    m_menu->addSeparator();
    m_remove = m_menu->addAction(QStringLiteral("Remove"), this, &AnalysisView::removeWanted);

    auto* name = new QHBoxLayout;
    name->setSpacing(Space::small);
    name->addWidget(m_name, 1);
    name->addWidget(m_nameField, 1);
    name->addWidget(m_verification);
    name->addWidget(m_more);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(0);
    texts->addLayout(name);
    texts->addWidget(m_summary);
    auto* head = new QHBoxLayout;
    head->setSpacing(Space::tiny);
    head->addWidget(m_opener, 0, Qt::AlignTop);
    head->addLayout(texts, 1);
    auto* body = new QVBoxLayout(m_body);
    body->setContentsMargins(0, 0, 0, 0);
    body->setSpacing(Space::small);
    body->addWidget(m_rows);
    body->addWidget(m_notes);
    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(Space::tiny);
    box->addLayout(head);
    box->addWidget(m_failures);
    box->addWidget(m_body);
    m_body->hide();

    connect(m_more, &QToolButton::clicked, this,
        [this] { m_menu->popup(m_more->mapToGlobal(m_more->rect().bottomLeft())); });
    connect(m_opener, &QToolButton::clicked, this, [this] { setOpen(!m_isOpen); });
    const auto endRenaming = [this] {
        m_nameField->hide();
        m_name->show();
    };
    connect(m_nameField, &TextField::committed, this, [this] { emit renamed(m_nameField->value()); });
    connect(m_nameField, &QLineEdit::editingFinished, this, endRenaming);
    connect(m_nameField, &QLineEdit::returnPressed, this, [this, endRenaming] {
        endRenaming();
        m_more->setFocus();
    });
}

void AnalysisView::focusFirst() { m_opener->setFocus(Qt::TabFocusReason); }

void AnalysisView::setOpen(bool isOpen)
{
    m_isOpen = isOpen;
    m_body->setVisible(isOpen);
    m_opener->setIcon(themedIcon(isOpen ? Icon::chevronDown : Icon::chevronRight));
    m_opener->setToolTip(isOpen ? QStringLiteral("Hide the files") : QStringLiteral("Show the files"));
    m_opener->setAccessibleName(m_opener->toolTip() + QStringLiteral(" of ") + m_name->text());
}

void AnalysisView::rename()
{
    m_nameField->setValue(m_name->text());
    m_nameField->revert();
    m_name->hide();
    m_nameField->show();
    m_nameField->setFocus(Qt::OtherFocusReason);
    m_nameField->selectAll();
}

void AnalysisView::show(const Analysis& analysis, CountMetric metric, const QString& lockReason)
{
    const auto& formats = m_model.formats();
    const auto name = analysis.name.empty() ? QStringLiteral("Unnamed analysis") : qt(analysis.name);
    m_name->setText(name);
    m_more->setAccessibleName(QStringLiteral("More for ") + name);
    m_more->setToolTip(QStringLiteral("More"));
    m_verification->setChip(Chip::of(verification(analysis.source)));

    const auto moment = m_model.moment();
    QStringList summary { qt(label(analysis.source)),
        qt(Formats::day(moment.calendar.day(analysis.importedAt))) };
    const LanguagePair pair { analysis.sourceLanguage, analysis.targetLanguage };
    if (!pair.text().empty())
        summary += qt(pair.text());
    summary += qt(counted(std::ssize(analysis.rows), "file", "files"));
    summary += qt(formats.count(sum(figuresOf(analysis.totals(), metric)))) + QLatin1Char(' ')
        + Pallisande::title(metric).toLower();
    m_summary->setText(summary.join(QStringLiteral(" · ")));
    // The verification of typed and counted numbers says nothing that the source doesn't.
    m_verification->setVisible(label(verification(analysis.source)) != label(analysis.source));

    const auto enable = [&](QAction* action, bool isThere, const QString& reason) {
        action->setVisible(isThere);
        action->setEnabled(reason.isEmpty());
        action->setToolTip(reason);
    };
    enable(m_report, analysis.storedCopy.has_value(), {});
    enable(m_map, analysis.source == AnalysisSource::mappedCSV && analysis.storedCopy, lockReason);
    enable(m_changeCounts, analysis.source == AnalysisSource::manual, lockReason);
    enable(m_remove, true, lockReason);
    enable(m_rename, true, m_model.canEdit() ? QString() : lockReason);
    m_menu->setToolTipsVisible(true);

    std::vector<NoteList::Note> failures, notes;
    for (const auto& check : analysis.mismatches())
        failures.push_back({ Icon::warning, Tone::amber, qt(check.sentence()), {}, {} });
    for (const auto& note : analysis.notes)
        notes.push_back({ Icon::info, Tone::grey, qt(sentence(note)), {}, {} });
    m_failures->setNotes(std::move(failures));
    m_notes->setNotes(std::move(notes));
    showRows(analysis, metric);
    setOpen(m_isOpen);
}

void AnalysisView::showRows(const Analysis& analysis, CountMetric metric)
{
    const auto& formats = m_model.formats();
    const auto none = QStringLiteral("–");
    const auto hasStated = std::any_of(analysis.rows.begin(), analysis.rows.end(),
        [&](const AnalysisRow& row) { return statedIn(row, metric).has_value(); });
    // The sums, which tell whether all is there, stand before the bands: those may have to be scrolled to.
    QStringList heads { QStringLiteral("File"), QStringLiteral("Sum") },
        full { QStringLiteral("File"), QStringLiteral("Sum of the bands") };
    if (hasStated) {
        heads << QStringLiteral("Report") << QStringLiteral("≠");
        full << QStringLiteral("Total in the report") << QStringLiteral("Difference");
    }
    std::vector<MatchBand> bands; // Those that hold something anywhere.
    const auto totals = analysis.totals();
    for (const auto band : allMatchBands) {
        if (figuresOf(totals, metric).valueOr(band, 0) == 0)
            continue;
        bands.push_back(band);
        heads += shortHead(band);
        full += qt(label(band));
    }
    std::vector<FiguresTable::Row> rows;
    const auto titles = fileTitles(analysis.rows);
    for (const auto& file : analysis.rows) {
        FiguresTable::Row row { .cells = { { .text = titles[rows.size()], .toolTip = qt(file.file) } } };
        const auto& counts = figuresOf(file.counts, metric);
        const auto bandSum = sum(counts);
        row.cells.push_back({ .text = qt(formats.count(bandSum)) });
        row.spoken = QStringLiteral("%1, %2 %3")
                         .arg(qt(file.file), qt(formats.count(bandSum)), Pallisande::title(metric).toLower());
        if (hasStated) {
            const auto stated = statedIn(file, metric);
            const auto difference = stated ? bandSum - *stated : 0;
            row.cells.push_back({ .text = stated ? qt(formats.count(*stated)) : none });
            row.cells.push_back({ .text = !stated ? none
                    : difference == 0             ? QString()
                                                  : qt(formats.count(difference)) });
            if (difference != 0)
                row.spoken += QStringLiteral(", the report says ") + qt(formats.count(*stated));
        }
        for (const auto band : bands)
            row.cells.push_back({ .text = qt(formats.count(counts.valueOr(band, 0))) });
        rows.push_back(std::move(row));
    }
    if (analysis.rows.size() > 1) {
        FiguresTable::Row total { .cells = { { .text = QStringLiteral("Total") } }, .isTotal = true };
        total.cells.push_back({ .text = qt(formats.count(sum(figuresOf(totals, metric)))) });
        if (hasStated && metric == CountMetric::words && analysis.statedTotalWords) {
            const auto difference = sum(totals.words) - *analysis.statedTotalWords;
            total.cells.push_back({ .text = qt(formats.count(*analysis.statedTotalWords)) });
            total.cells.push_back({ .text = difference == 0 ? QString() : qt(formats.count(difference)) });
        } else if (hasStated) {
            total.cells.resize(total.cells.size() + 2);
        }
        for (const auto band : bands)
            total.cells.push_back({ .text = qt(formats.count(figuresOf(totals, metric).valueOr(band, 0))) });
        rows.push_back(std::move(total));
    }
    m_rows->setAccessibleName(
        QStringLiteral("%1 of %2 by file").arg(Pallisande::title(metric), m_name->text()));
    m_rows->setHeads(heads, full);
    m_rows->setRows(rows);
}

} // namespace Pallisande
