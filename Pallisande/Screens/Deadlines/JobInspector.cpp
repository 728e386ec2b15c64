#include "Pallisande/Screens/Deadlines/JobInspector.h"

#include "Pallisande/Model/JobSection.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/Chip.h"
#include "Pallisande/Widgets/Label.h"

#include <QVBoxLayout>

namespace Pallisande {

JobInspector::JobInspector(AppModel& model, QWidget* parent)
    : QScrollArea(parent)
    , m_model(model)
{
    setObjectName(QStringLiteral("inspector"));
    setAccessibleName(QStringLiteral("Inspector"));
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* page = new QWidget;
    m_none = makeSentence(QStringLiteral("Select a card to see its job."), page, TextStyle::body, Ink::muted);
    m_content = new QWidget(page);
    m_title = makeSentence({}, m_content, TextStyle::heading);
    m_subtitle = makeSentence({}, m_content, TextStyle::body, Ink::muted);
    m_status = new ChipLabel(Chip::of(JobStatus::quote), m_content);
    m_due = makeSentence({}, m_content);
    m_price = makeSentence({}, m_content, TextStyle::heading);
    m_facts = makeSentence({}, m_content, TextStyle::body, Ink::muted);
    m_notes = makeSentence({}, m_content);
    m_notes->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_open = makeButton(QStringLiteral("Open Job"), Icon::arrowUpRight, ButtonKind::plain, m_content);
    m_open->setObjectName(QStringLiteral("openJob"));
    auto* box = new QVBoxLayout(m_content);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(Space::small);
    box->addWidget(m_title);
    box->addWidget(m_subtitle);
    box->addWidget(m_status, 0, Qt::AlignLeft);
    box->addSpacing(Space::small);
    box->addWidget(m_price);
    box->addWidget(m_due);
    box->addWidget(m_facts);
    box->addWidget(m_notes);
    box->addSpacing(Space::small);
    box->addWidget(m_open, 0, Qt::AlignLeft);
    auto* column = new QVBoxLayout(page);
    column->setContentsMargins(Space::group, Space::group, Space::group, Space::group);
    column->addWidget(m_none);
    column->addWidget(m_content);
    column->addStretch();
    setWidget(page);
    connect(m_open, &QPushButton::clicked, this, &JobInspector::openWanted);
    dress();
}

void JobInspector::showJob(std::optional<Base::Uuid> id)
{
    const auto* const job = id ? m_model.job(*id) : nullptr;
    m_none->setVisible(!job);
    m_content->setVisible(job);
    if (!job)
        return;
    const auto show = [](Label* label, const std::string& text) {
        label->setText(qt(text));
        label->setVisible(!text.empty());
    };
    const auto* const client = m_model.client(job->clientID);
    const auto row = m_model.jobs().row(*id);
    auto subtitle = client ? client->name : std::string();
    if (const auto pair = job->pair.text(); !pair.empty())
        subtitle += (subtitle.empty() ? "" : " · ") + pair;
    show(m_title, row.title);
    show(m_subtitle, subtitle);
    m_status->setChip(Chip::of(job->status));
    show(m_price, row.price.empty() ? "no price yet" : row.price + " before tax");
    show(m_due, m_model.jobs().dueSentence(*job));
    std::string facts;
    if (!job->reference.empty())
        facts += job->reference;
    if (job->quoteNumber)
        facts += (facts.empty() ? "" : "\n") + *job->quoteNumber;
    for (const auto& analysis : job->analyses)
        facts += (facts.empty() ? "" : "\n") + analysis.name;
    show(m_facts, facts);
    show(m_notes, job->notes);
}

void JobInspector::changeEvent(QEvent* event)
{
    QScrollArea::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        dress();
}

void JobInspector::dress()
{
    const auto& theme = Theme::of(this);
    const auto ours = theme.palette(theme.colours.content);
    setPalette(ours);
    if (widget())
        widget()->setPalette(ours);
}

} // namespace Pallisande
