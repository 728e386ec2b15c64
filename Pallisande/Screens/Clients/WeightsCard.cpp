#include "Pallisande/Screens/Clients/WeightsCard.h"

#include "Pallisande/Screens/Clients/PriceStrip.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/FieldLock.h"
#include "Pallisande/Widgets/NumberEdit.h"
#include "Pallisande/Widgets/Painting.h"
#include "Pallisande/Widgets/ThemeStyle.h"

#include <QCheckBox>
#include <QMenu>
#include <QMouseEvent>

namespace Pallisande {

namespace {

constexpr BandWeights::Preset presets[] { BandWeights::Preset::none, BandWeights::Preset::repetitionsAnd100,
    BandWeights::Preset::graduated };
constexpr int barWidth = 60, percentWidth = 7;

} // namespace

// How much of the full rate a band is billed at, in the colour of the band.
class ShareBar : public QWidget {
public:
    ShareBar(MatchBand band, QWidget* parent)
        : QWidget(parent)
        , m_band(band)
    {
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    }

    void setShare(const Base::Decimal& percent)
    {
        const auto clamped = std::clamp(percent, Base::Decimal(0), Base::Decimal(100)).rounded(0);
        m_percent = static_cast<int>(clamped.toInteger().value_or(0));
        update();
    }
    QSize sizeHint() const override { return { Theme::of(this).scaled(barWidth), 10 }; }

protected:
    void paintEvent(QPaintEvent*) override
    {
        const auto& colours = Theme::of(this).colours;
        QPainter painter(this);
        const QRectF whole(rect());
        drawSurface(painter, whole, 5, colours.inset, colours.border, hairline(painter));
        if (m_percent == 0)
            return;
        const double width = std::max(whole.width() * m_percent / 100, 2.0);
        const double left = layoutDirection() == Qt::RightToLeft ? whole.right() - width : whole.left();
        painter.setClipRect(QRectF(left, whole.top(), width, whole.height()));
        drawSurface(painter, whole, 5, colours.band(m_band));
    }

private:
    MatchBand m_band;
    int m_percent = 0;
};

// The text of a check box that wraps; a click on it is one on the box.
class CheckText : public Label {
public:
    CheckText(const QString& text, QCheckBox* box, QWidget* parent)
        : Label(text, parent)
        , m_box(box)
    {
        setWordWrap(true);
        setBuddy(box);
        box->setAccessibleName(text);
    }

protected:
    void mousePressEvent(QMouseEvent* event) override { event->accept(); } // So that the release comes here.
    void mouseReleaseEvent(QMouseEvent* event) override
    {
        if (event->button() == Qt::LeftButton && rect().contains(event->pos()) && m_box->isEnabled())
            m_box->click();
    }

private:
    QCheckBox* m_box;
};

WeightsCard::WeightsCard(AppModel& model, QWidget* parent)
    : ClientCard(model, QStringLiteral("Weights"), parent)
    , m_presets(makeButton(QStringLiteral("Presets"), ButtonKind::plain, this))
    , m_same(makeSentence({}, this, TextStyle::body, Ink::muted))
    , m_raised(new Label(QStringLiteral("billed at 100%"), this, TextStyle::small, Ink::muted))
    , m_floor(new QCheckBox(this))
{
    m_strip = new PriceStrip(
        model, [](Client& client, const Client& before) { client.weights = before.weights; }, this);
    content()->addWidget(
        makeSentence(QStringLiteral("There’s no standard table: these are the shares you agreed with "
                                    "this client. The presets are only examples."),
            this, TextStyle::body, Ink::muted));
    auto* menu = new QMenu(m_presets);
    for (const auto preset : presets) {
        menu->addAction(qt(label(preset)), this, [this, preset] {
            edit(nullptr, "Change Weights",
                [&](Client& client) { client.weights.percent = BandWeights::of(preset).percent; });
        });
    }
    m_presets->setMenu(menu);
    m_presets->setObjectName(QStringLiteral("presets"));
    marksChange(m_presets);
    m_same->setObjectName(QStringLiteral("samePreset"));
    auto* head = new QHBoxLayout;
    head->setSpacing(Space::medium);
    head->addWidget(m_presets, 0, Qt::AlignTop);
    head->addWidget(m_same, 1);
    content()->addLayout(head);
    content()->addWidget(m_strip);
    auto* form = new FormLayout(this);
    content()->addWidget(form);
    for (const auto band : allMatchBands)
        addRow(*form, band);
    m_floor->setObjectName(QStringLiteral("floor"));
    addFloor();
    connect(m_floor, &QCheckBox::clicked, this, [this](bool isOn) {
        edit(nullptr, "Change Weights", [&](Client& client) { client.weights.floor75 = isOn; });
    });
}

void WeightsCard::addFloor()
{
    auto* text
        = new CheckText(QStringLiteral("75% floor: bill matches under 75% as new words"), m_floor, this);
    auto* line = new QHBoxLayout;
    line->setSpacing(Space::small);
    line->addWidget(m_floor, 0, Qt::AlignTop);
    line->addWidget(text, 1);
    content()->addLayout(line);
}

void WeightsCard::addRow(FormLayout& form, MatchBand band)
{
    auto& row = m_rows[band];
    auto* line = new QWidget(&form);
    auto* box = new QHBoxLayout(line);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(Space::small);
    row.percent = new DecimalEdit(QLocale::system(), line);
    row.percent->setUnit(QStringLiteral("%"));
    row.percent->setWidthInCharacters(percentWidth);
    const auto name = caseNames(band)[static_cast<std::size_t>(band)];
    row.percent->setObjectName(QStringLiteral("weight.%1").arg(qt(name)));
    row.percent->setAccessibleDescription(QStringLiteral("Percent of the full rate"));
    row.bar = new ShareBar(band, line);
    box->addWidget(row.percent);
    box->addWidget(new Label(QStringLiteral("%"), line, TextStyle::body, Ink::muted));
    box->addSpacing(Space::small);
    box->addWidget(row.bar);
    row.note = form.addRow(qt(label(band)), line);
    if (band == MatchBand::fuzzy50)
        form.addBelow(m_raised);
    connect(row.percent, &LineField::committed, this, [this, band] {
        auto* const field = m_rows[band].percent;
        edit(
            field, "Change Weights", [&](Client& client) { client.weights.percent[band] = *field->value(); });
    });
    connect(row.percent, &LineField::problemChanged, this, [this, band] { showNote(band); });
}

void WeightsCard::refresh(const Client& client)
{
    const auto& weights = client.weights;
    const auto preset = weights.matchingPreset();
    m_same->setText(preset ? QStringLiteral("Same as the example “%1”").arg(qt(label(*preset))) : QString());
    m_floor->setChecked(weights.floor75);
    m_raised->setVisible(weights.floor75);
    m_invalid = weights.firstInvalidBand();
    for (const auto band : allMatchBands) {
        auto& row = m_rows[band];
        const auto percent = weights.percentOf(band);
        const bool isRaised = weights.floor75 && band == MatchBand::fuzzy50;
        row.percent->setValue(percent);
        row.bar->setShare(isRaised ? Base::Decimal(100) : percent);
        showNote(band);
    }
    m_strip->show(client);
}

void WeightsCard::showNote(MatchBand band)
{
    auto& row = m_rows[band];
    auto problem = row.percent->problem();
    if (problem.isEmpty() && band == m_invalid)
        problem = QStringLiteral("The weight for %1 must be between 0 and 100%.").arg(qt(label(band)));
    setInvalid(row.percent, !problem.isEmpty());
    row.note->showProblem(problem);
}

QWidget* WeightsCard::fieldToMend() const
{
    return m_rows.find(m_invalid.value_or(MatchBand::perfect))->percent;
}

} // namespace Pallisande
