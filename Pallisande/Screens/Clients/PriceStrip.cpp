#include "Pallisande/Screens/Clients/PriceStrip.h"

#include "Pallisande/Model/ClientSection.h"
#include "Pallisande/Model/JobSection.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/Label.h"
#include "Pallisande/Widgets/Painting.h"

#include <QEvent>
#include <QGridLayout>

namespace Pallisande {

namespace {

constexpr std::size_t mostNamed = 3;

// “Annual report”, “Leaflet” and 4 more.
QString quotedJobs(const AppModel& model, const ClientSection::IDs& jobs)
{
    QStringList names;
    std::size_t count = 0;
    for (const auto& id : jobs) {
        const auto* const job = model.job(id);
        if (job && job->quoteNumber && ++count <= mostNamed)
            names += QStringLiteral("“%1”").arg(qt(jobTitle(*job)));
    }
    if (count > mostNamed)
        names += QStringLiteral("%1 more").arg(count - mostNamed);
    const auto last = names.isEmpty() ? QString() : names.takeLast();
    return names.isEmpty() ? last : QStringLiteral("%1 and %2").arg(names.join(QStringLiteral(", ")), last);
}

} // namespace

PriceStrip::PriceStrip(AppModel& model, Restore restore, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_restore(std::move(restore))
    , m_sentence(makeSentence({}, this))
    , m_keep(makeButton({}, ButtonKind::plain, this))
    , m_dismiss(makeIconButton(Icon::cross, QStringLiteral("Dismiss"), this))
{
    m_sentence->setObjectName(QStringLiteral("priceEffect"));
    m_keep->setObjectName(QStringLiteral("keepRates"));
    auto* box = new QGridLayout(this);
    box->setSpacing(Space::small);
    box->addWidget(m_sentence, 0, 0);
    box->addWidget(m_dismiss, 0, 1, Qt::AlignTop);
    box->addWidget(m_keep, 1, 0, Qt::AlignLeft);
    box->setColumnStretch(0, 1);
    connect(m_keep, &QPushButton::clicked, this, &PriceStrip::keepRates);
    connect(m_dismiss, &QToolButton::clicked, this, &PriceStrip::forget);
    hide();
    dress();
}

void PriceStrip::show(const Client& client)
{
    if (!m_before || m_before->id != client.id)
        m_before = client;
    auto restored = client;
    m_restore(restored, *m_before);
    if (restored == client)
        return hide();
    const auto effect = m_model.clients().priceEffect(
        client.id, [this](Client& changed) { m_restore(changed, *m_before); });
    if (effect.jobs.empty())
        return hide();
    const auto count = static_cast<int>(effect.jobs.size());
    auto sentence = count == 1
        ? QStringLiteral("1 job that isn’t invoiced yet has another price now.")
        : QStringLiteral("%1 jobs that aren’t invoiced yet have another price now.").arg(count);
    if (effect.quoted > 0)
        sentence += QStringLiteral(" A quote was given for %1.").arg(quotedJobs(m_model, effect.jobs));
    m_keep->setText(count == 1 ? QStringLiteral("Keep Its Old Rate") : QStringLiteral("Keep Their Old Rate"));
    const bool isNew = isHidden() || m_sentence->text() != sentence;
    m_sentence->setText(sentence);
    // A rate of another unit or currency would mean something else.
    m_keep->setVisible(effect.canKeepRates && client.unit == m_before->unit
        && client.currency == m_before->currency && m_model.canEdit());
    setVisible(true);
    if (isNew)
        announce(m_sentence, sentence);
}

void PriceStrip::keepRates()
{
    const auto before = *m_before;
    forget();
    m_model.clients().keepRates(before);
}

void PriceStrip::forget()
{
    if (const auto* const client = m_before ? m_model.client(m_before->id) : nullptr)
        m_before = *client;
    hide();
}

void PriceStrip::paintEvent(QPaintEvent*)
{
    const auto& theme = Theme::of(this);
    const auto& tone = theme.colours.tone(Tone::blue);
    QPainter painter(this);
    drawSurface(painter, rect(), Radius::field, tone.tint);
    const int side = theme.iconSize();
    const auto line = m_sentence->geometry();
    drawIcon(painter, Icon::info,
        QRectF(Space::medium,
            line.top() + m_sentence->contentsMargins().top()
                + (m_sentence->fontMetrics().height() - side) / 2.0,
            side, side),
        tone.text);
}

void PriceStrip::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        dress();
}

void PriceStrip::dress()
{
    const auto& theme = Theme::of(this);
    setPalette(theme.palette(theme.colours.tone(Tone::blue).tint));
    // Its first line is beside the cross.
    const int room = theme.controlHeight() - QFontMetrics(theme.font(TextStyle::body)).height();
    m_sentence->setContentsMargins(0, std::max(0, room / 2), 0, 0);
    m_sentence->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    layout()->setContentsMargins(
        Space::medium + theme.iconSize() + Space::small, Space::small, Space::small, Space::small);
}

} // namespace Pallisande
