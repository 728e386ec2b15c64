#include "Pallisande/Screens/Deadlines/DeliveredCard.h"

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/Label.h"
#include "Pallisande/Widgets/LineField.h"
#include "Pallisande/Widgets/Painting.h"

#include <QAbstractButton>
#include <QEvent>
#include <QVBoxLayout>

namespace Pallisande {

namespace {

constexpr std::size_t mostGroups = 40, mostLines = 5; // The rest is told, and found in the list of jobs.

// A delivered job; pressed, it is shown.
class DeliveredLine final : public QAbstractButton {
public:
    DeliveredLine(const DeliveredGroup::Line& line, QWidget* parent)
        : QAbstractButton(parent)
        , m_price(qt(line.price))
    {
        setText(qt(line.text));
        setAccessibleName(qt(line.text + ", " + line.price));
        setFocusPolicy(Qt::TabFocus);
        setAttribute(Qt::WA_Hover);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }
    QSize sizeHint() const override
    {
        const auto& theme = Theme::of(this);
        return { theme.scaled(320),
            std::max(theme.scaled(28), theme.lineHeight(TextStyle::body) + Space::small) };
    }
    QSize minimumSizeHint() const override { return { 0, sizeHint().height() }; }

protected:
    void paintEvent(QPaintEvent*) override
    {
        const auto& theme = Theme::of(this);
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        if (underMouse())
            drawSurface(painter, rect(), Radius::field, theme.colours.hover);
        auto area = QRectF(rect()).adjusted(Space::large, 0, -Space::small, 0);
        painter.setFont(theme.font(TextStyle::body));
        painter.setPen(theme.colours.text);
        drawFigures(painter, area, Qt::AlignRight | Qt::AlignVCenter, m_price);
        area.setRight(area.right() - figuresWidth(painter.font(), m_price) - Space::large);
        drawLine(painter, area, text());
    }
    bool event(QEvent* event) override
    {
        if (event->type() == QEvent::ToolTip)
            setToolTip(fontMetrics().horizontalAdvance(text()) > width() / 2 ? text() : QString());
        return QAbstractButton::event(event);
    }

private:
    QString m_price;
};

std::string signature(const DeadlineBoard& board)
{
    auto text = board.deliveredTotal + "\n" + board.forgottenDrafts;
    for (const auto& group : board.delivered) {
        text += "\n" + group.clientID.toString() + group.client + group.summary + group.total;
        for (const auto& line : group.jobs)
            text += "\n" + line.id.toString() + line.text + line.price;
    }
    return text;
}

} // namespace

DeliveredCard::DeliveredCard(AppModel& model, QWidget* parent)
    : Card(QStringLiteral("Delivered, not invoiced"), parent)
    , m_model(model)
    , m_total(new Label(this))
    , m_groups(new QVBoxLayout)
    , m_drafts(makeButton({}, Icon::invoice, ButtonKind::quiet, this))
{
    setObjectName(QStringLiteral("delivered"));
    addToHeading(m_total);
    m_groups->setSpacing(Space::large);
    content()->addLayout(m_groups);
    m_drafts->setObjectName(QStringLiteral("forgottenDrafts"));
    content()->addWidget(m_drafts, 0, Qt::AlignLeft);
    connect(m_drafts, &QPushButton::clicked, this, [this] {
        commitFocusedField(window());
        m_model.invoices().setFilter(InvoiceFilter::drafts);
        m_model.setSection(AppSection::invoices);
    });
}

void DeliveredCard::refresh()
{
    const auto& board = m_model.deadlines().board();
    auto now = signature(board) + (m_model.canEdit() ? "" : "\n" + m_model.readOnlyText());
    if (now == m_shown)
        return;
    m_shown = std::move(now);
    m_total->setText(qt(board.deliveredTotal));
    while (auto* const item = m_groups->takeAt(0)) {
        item->widget()->hide();
        item->widget()->deleteLater();
        delete item;
    }
    for (std::size_t place = 0; place < std::min(board.delivered.size(), mostGroups); ++place)
        m_groups->addWidget(makeGroup(board.delivered[place]));
    if (board.delivered.size() > mostGroups)
        m_groups->addWidget(
            new Label(QStringLiteral("and %1 more clients").arg(board.delivered.size() - mostGroups), this,
                TextStyle::body, Ink::muted));
    m_drafts->setText(qt(board.forgottenDrafts));
    m_drafts->setVisible(!board.forgottenDrafts.empty());
    setVisible(!board.delivered.empty() || !board.forgottenDrafts.empty());
}

QWidget* DeliveredCard::makeGroup(const DeliveredGroup& group)
{
    auto* widget = new QWidget(this);
    auto* box = new QVBoxLayout(widget);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(Space::tiny);
    auto* head = new QHBoxLayout;
    head->setSpacing(Space::large);
    auto* name = new ElidedLabel(qt(group.client), widget, TextStyle::bodyStrong);
    name->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Preferred);
    head->addWidget(name);
    auto* summary = new ElidedLabel(qt(group.summary), widget, TextStyle::small, Ink::muted);
    head->addWidget(summary, 1);
    head->addWidget(new Label(qt(group.total), widget, TextStyle::bodyStrong));
    auto* button = makeButton(QStringLiteral("Make Invoice"), ButtonKind::plain, widget);
    button->setObjectName(QStringLiteral("makeInvoice"));
    button->setAccessibleName(QStringLiteral("Make Invoice for %1").arg(qt(group.client)));
    button->setEnabled(m_model.canEdit());
    button->setToolTip(m_model.canEdit() ? QString() : qt(m_model.readOnlyText()));
    connect(button, &QPushButton::clicked, this,
        [this, id = group.clientID] { m_model.deadlines().makeInvoice(id); });
    head->addWidget(button);
    box->addLayout(head);
    for (std::size_t place = 0; place < std::min(group.jobs.size(), mostLines); ++place) {
        auto* line = new DeliveredLine(group.jobs[place], widget);
        connect(line, &QAbstractButton::clicked, this,
            [this, id = group.jobs[place].id] { m_model.show(AppSection::jobs, id); });
        box->addWidget(line);
    }
    if (group.jobs.size() > mostLines) {
        auto* more = new Label(QStringLiteral("and %1 more").arg(group.jobs.size() - mostLines), widget,
            TextStyle::small, Ink::muted);
        more->setContentsMargins(Space::large, 0, 0, 0);
        box->addWidget(more);
    }
    return widget;
}

} // namespace Pallisande
