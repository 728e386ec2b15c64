#include "Pallisande/Screens/Jobs/JobHeader.h"

#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Chip.h"
#include "Pallisande/Widgets/FlowLayout.h"
#include "Pallisande/Widgets/Label.h"
#include "Pallisande/Widgets/NoteLine.h"

#include <QAction>
#include <QEvent>
#include <QMenu>
#include <QVBoxLayout>

namespace Pallisande {

namespace {

constexpr JobStatus statusesByHand[] { JobStatus::quote, JobStatus::inProgress, JobStatus::delivered,
    JobStatus::cancelled };

// Looks like the heading that it is until somebody types in it.
class TitleField : public TextField {
public:
    explicit TitleField(QWidget* parent)
        : TextField(parent)
    {
        dress();
        show(false);
    }

protected:
    void focusInEvent(QFocusEvent* event) override
    {
        show(!isReadOnly());
        TextField::focusInEvent(event);
    }
    void focusOutEvent(QFocusEvent* event) override
    {
        TextField::focusOutEvent(event);
        show(false);
        setCursorPosition(0);
    }
    void changeEvent(QEvent* event) override
    {
        TextField::changeEvent(event);
        if (event->type() == QEvent::StyleChange)
            dress();
    }

private:
    void show(bool asField)
    {
        setProperty("isBare", !asField);
        setTextMargins(asField ? 0 : -Space::small, 0, 0, 0); // Its text stands at the edge of the cards.
        update();
    }
    void dress()
    {
        const auto font = Theme::of(this).font(TextStyle::title);
        if (font != this->font())
            setFont(font);
    }
};

} // namespace

JobHeader::JobHeader(const ScreenServices& services, QWidget* parent)
    : QWidget(parent)
    , JobPart(services)
    , m_title(new TitleField(this))
    , m_subtitle(makeSentence({}, this, TextStyle::body, Ink::muted))
    , m_lock(new NoteLine(this))
    , m_status(makeButton({}, ButtonKind::plain, this))
    , m_makeInvoice(actionButton(services.commands.action(Command::makeInvoice),
          QStringLiteral("Make Invoice"), ButtonKind::plain, this))
    , m_statusMenu(new QMenu(m_status))
    , m_refusal(makeSentence({}, this, TextStyle::small, Ink::red))
{
    m_title->setObjectName(QStringLiteral("title"));
    m_title->setAccessibleName(QStringLiteral("Title"));
    m_title->setPlaceholderText(QStringLiteral("Untitled job"));
    m_subtitle->setObjectName(QStringLiteral("subtitle"));
    m_subtitle->setTextFormat(Qt::RichText);
    m_subtitle->setTextInteractionFlags(Qt::TextBrowserInteraction);
    m_lock->setObjectName(QStringLiteral("lock"));
    m_status->setObjectName(QStringLiteral("status"));
    m_status->setMenu(m_statusMenu);
    m_refusal->setObjectName(QStringLiteral("statusRefusal"));
    m_makeInvoice->setObjectName(QStringLiteral("makeInvoice"));
    auto* import = actionButton(services.commands.action(Command::importAnalysis),
        QStringLiteral("Import Analysis…"), ButtonKind::plain, this);
    import->setObjectName(QStringLiteral("importAnalysis"));

    auto* actions = new QWidget(this);
    auto* flow = new FlowLayout(actions);
    flow->setSide(Qt::AlignRight);
    flow->addWidget(import);
    flow->addWidget(m_makeInvoice);
    auto* row = new QHBoxLayout;
    row->setSpacing(Space::small);
    row->addWidget(m_status, 0, Qt::AlignTop);
    row->addWidget(actions, 1);
    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(Space::tiny);
    box->addWidget(m_title);
    box->addWidget(m_subtitle);
    box->addWidget(m_lock);
    box->addSpacing(Space::small);
    box->addLayout(row);
    box->addWidget(m_refusal);

    connect(m_title, &TextField::committed, this,
        [this] { edit(*m_title, "Change Title", [&](Job& job) { job.title = plain(m_title->value()); }); });
    connect(m_subtitle, &QLabel::linkActivated, this, [this] {
        if (const auto* const shown = job())
            model().show(AppSection::clients, shown->clientID);
    });
    connect(m_lock, &NoteLine::followed, this, [this] {
        if (job() && job()->invoiceID)
            model().show(AppSection::invoices, *job()->invoiceID);
    });
    connect(m_statusMenu, &QMenu::aboutToShow, this, &JobHeader::fillStatusMenu);
}

void JobHeader::revert()
{
    m_title->revert();
    m_refusal->clear();
}

void JobHeader::refresh()
{
    const auto& shown = *job();
    const auto readOnly = readOnlyReason();
    m_title->setValue(qt(shown.title));
    setLocked(m_title, readOnly);
    if (!m_title->hasFocus())
        m_title->setCursorPosition(0);

    QStringList rest;
    if (const auto pair = shown.pair.text(); !pair.empty())
        rest += qt(pair);
    if (const auto due = model().jobs().dueSentence(shown); !due.empty())
        rest += qt(due);
    const auto* const owner = client();
    const auto name = owner ? owner->name.empty() ? QStringLiteral("Unnamed client") : qt(owner->name)
                            : QStringLiteral("No client");
    const auto tail = rest.isEmpty() ? QString() : QStringLiteral(" · ") + rest.join(QStringLiteral(" · "));
    m_subtitle->setText(
        (owner ? linkText({}, name + QStringLiteral(" ›")) : name.toHtmlEscaped()) + tail.toHtmlEscaped());
    m_subtitle->setAccessibleName(name + tail);
    m_subtitle->setToolTip(owner ? QStringLiteral("Open Client") : QString());

    const auto lock = model().jobs().lockText(shown);
    const auto* const invoice = shown.invoiceID ? model().invoice(*shown.invoiceID) : nullptr;
    m_lock->show(Icon::lock, Tone::grey, lock ? qt(*lock) : QString(),
        !invoice              ? QString()
            : invoice->number ? QStringLiteral("Open Invoice")
                              : QStringLiteral("Open Draft"));
    m_lock->setVisible(lock.has_value());

    m_status->setText(qt(Pallisande::title(shown.status)));
    m_status->setIcon(themedIcon(Chip::of(shown.status).mark));
    m_status->setAccessibleName(QStringLiteral("Status: ") + m_status->text());
    m_status->setEnabled(lockReason().isEmpty());
    m_status->setToolTip(lockReason());
    m_refusal->setVisible(!m_refusal->text().isEmpty());
    const auto kind = shown.status == JobStatus::delivered && !lock ? ButtonKind::primary : ButtonKind::plain;
    if (kindOf(m_makeInvoice) != kind)
        setKind(m_makeInvoice, kind);
}

// The targets that it may have from here, then those that no hand reaches.
void JobHeader::fillStatusMenu()
{
    m_statusMenu->clear();
    m_statusMenu->setToolTipsVisible(true);
    const auto add = [&](JobStatus status) {
        auto* action = m_statusMenu->addAction(themedIcon(Chip::of(status).mark),
            qt(Pallisande::title(status)), this, [this, status] { setStatus(status); });
        action->setObjectName(action->text());
        return action;
    };
    for (const auto status : statusesByHand) {
        if (job() && job()->status != status && model().jobs().mayHaveStatus(id(), status))
            add(status);
    }
    for (const auto status : { JobStatus::invoiced, JobStatus::paid }) {
        auto* action = add(status);
        action->setEnabled(false);
        action->setToolTip(QStringLiteral("Reached through invoices and payments."));
        action->setStatusTip(action->toolTip());
    }
}

void JobHeader::setStatus(JobStatus status)
{
    const Base::Uuid ids[] { id() };
    const bool isDone = model().jobs().setStatus(ids, status);
    m_refusal->setText(isDone || !model().problem() ? QString() : qt(model().problem()->text));
    m_refusal->setVisible(!m_refusal->text().isEmpty());
    if (!isDone) { // It stands where it belongs.
        announce(m_refusal, m_refusal->text());
        model().dismissProblem();
    }
}

} // namespace Pallisande
