#include "Pallisande/Screens/Jobs/AnalysesCard.h"

#include "Pallisande/Model/DocumentCounts.h"
#include "Pallisande/Model/Imports.h"
#include "Pallisande/Screens/AnalysisFigures.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/ComboBox.h"
#include "Pallisande/Widgets/FlowLayout.h"
#include "Pallisande/Widgets/Label.h"

#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>

namespace Pallisande {

AnalysesCard::AnalysesCard(const ScreenServices& services, QWidget* parent)
    : JobCard(QStringLiteral("Analyses"), services, parent)
    , m_metric(new ComboBox(this))
    , m_nothing(makeSentence(QStringLiteral("Drop a CAT analysis here, choose one, or type the counts in."),
          this, TextStyle::body, Ink::muted))
    , m_list(new QVBoxLayout)
{
    m_metric->setObjectName(QStringLiteral("countMetric"));
    m_metric->setAccessibleName(QStringLiteral("What the tables count"));
    addToHeading(m_metric);
    m_list->setSpacing(Space::medium);
    content()->addWidget(m_nothing);
    content()->addLayout(m_list);
    auto* buttons = new QWidget(this);
    auto* flow = new FlowLayout(buttons);
    const auto add = [&](Command command, const char* text) {
        flow->addWidget(
            actionButton(commands().action(command), QString::fromUtf8(text), ButtonKind::plain, buttons));
    };
    add(Command::importAnalysis, "Import Analysis…");
    add(Command::typeCounts, "Type Counts In…");
    auto* count = makeButton(QStringLiteral("Count Documents…"), ButtonKind::plain, buttons);
    count->setObjectName(QStringLiteral("countDocuments"));
    flow->addWidget(count);
    content()->addSpacing(Space::tiny);
    content()->addWidget(buttons);

    connect(count, &QPushButton::clicked, this, [this] {
        commitFocusedField(window());
        model().counts().choose(DocumentCounts::Purpose::attach, id());
    });
    connect(services.commands.action(Command::typeCounts), &QAction::changed, count, [this, count] {
        const auto* const action = commands().action(Command::typeCounts); // The same may be done.
        count->setEnabled(action->isEnabled());
        count->setToolTip(action->isEnabled() ? QString() : action->toolTip());
    });
    connect(m_metric, &QComboBox::activated, this, [this] {
        if (job())
            refresh();
    });
}

CountMetric AnalysesCard::metric() const { return static_cast<CountMetric>(m_metric->currentData().toInt()); }

void AnalysesCard::refresh()
{
    const auto& shown = *job();
    const auto* const owner = client();
    const auto unit = owner ? owner->unit : RateUnit::word;
    if (m_unit != unit) { // What the client is billed by stands first.
        m_unit = unit;
        const QSignalBlocker quiet(m_metric);
        m_metric->clear();
        auto order = std::array { CountMetric::words, CountMetric::segments, CountMetric::characters };
        if (unit == RateUnit::character)
            order = { CountMetric::characters, CountMetric::words, CountMetric::segments };
        for (const auto metric : order)
            m_metric->addItem(Pallisande::title(metric), static_cast<int>(metric));
    }
    const bool isAnother = std::exchange(m_shown, id()) != id();
    const auto lock = lockReason();
    std::erase_if(m_views, [&](const auto& entry) {
        const bool isThere = std::any_of(shown.analyses.begin(), shown.analyses.end(),
            [&](const Analysis& analysis) { return analysis.id == entry.first; });
        if (!isThere) {
            entry.second->hide();
            entry.second->deleteLater();
        }
        return !isThere;
    });
    int place = 0;
    for (const auto& analysis : shown.analyses) {
        const bool isNew = !m_views.contains(analysis.id);
        auto* view = viewOf(analysis.id);
        m_list->insertWidget(place++, view);
        view->show(analysis, metric(), lock);
        if (isNew || isAnother)
            view->setOpen(shown.analyses.size() == 1);
    }
    m_nothing->setVisible(shown.analyses.empty());
    m_metric->setVisible(!shown.analyses.empty());
}

AnalysisView* AnalysesCard::viewOf(const Base::Uuid& analysis)
{
    auto*& view = m_views[analysis];
    if (view)
        return view;
    view = new AnalysisView(model(), this);
    connect(view, &AnalysisView::renamed, this, [this, analysis](const QString& name) {
        model().jobs().renameAnalysis(id(), analysis, plain(name));
    });
    connect(view, &AnalysisView::removeWanted, this,
        [this, analysis] { model().jobs().removeAnalysis(id(), analysis); });
    connect(view, &AnalysisView::reportWanted, this,
        [this, analysis] { model().jobs().showReport(id(), analysis); });
    connect(view, &AnalysisView::mapWanted, this,
        [this, analysis] { model().imports().mapAgain(id(), analysis); });
    connect(view, &AnalysisView::countsWanted, this, [this, analysis] {
        model().openSheet(ManualSheet { id(), analysis });
    });
    return view;
}

void AnalysesCard::showMismatches()
{
    AnalysisView* first = nullptr;
    for (const auto& analysis : job()->analyses) {
        if (analysis.mismatchCount() == 0)
            continue;
        auto* view = viewOf(analysis.id);
        view->setOpen(true);
        first = first ? first : view;
    }
    if (first)
        first->focusFirst(); // Which scrolls it into view.
}

} // namespace Pallisande
