#include "Pallisande/Screens/Jobs/PriceCard.h"

#include "Pallisande/Screens/Jobs/FiguresTable.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/BandBar.h"
#include "Pallisande/Widgets/FormLayout.h"
#include "Pallisande/Widgets/Label.h"
#include "Pallisande/Widgets/NoteLine.h"
#include "Pallisande/Widgets/NumberEdit.h"

#include <QCheckBox>
#include <QHBoxLayout>

#include <algorithm>

namespace Pallisande {

namespace {

constexpr const char* hidesEmptyKey = "jobs.hidesEmptyBands";
constexpr int mostUnitPlaces = 6;

QString unitWord(RateUnit unit)
{
    return unit == RateUnit::word ? QStringLiteral("words") : QStringLiteral("characters");
}

QString capital(QString word)
{
    word[0] = word[0].toUpper();
    return word;
}

// Exact; cut where there are more than six decimals, and then whole in the tooltip.
FiguresTable::Cell unitCell(const Base::Decimal& units, int places, const Formats& formats)
{
    if (units.places() <= mostUnitPlaces)
        return { .text = qt(formats.number(units, places)) };
    auto whole = qt(formats.number(units));
    const auto cut = whole.left(whole.size() - (units.places() - mostUnitPlaces)) + QStringLiteral("…");
    return { .text = cut, .toolTip = whole };
}

} // namespace

PriceCard::PriceCard(const ScreenServices& services, QWidget* parent)
    : JobCard(QStringLiteral("Price"), services, parent)
    , m_billed(makeSentence({}, this, TextStyle::body, Ink::muted))
    , m_amount(new Label(this, TextStyle::largeNumber))
    , m_beforeTax(new Label(QStringLiteral("before tax"), this, TextStyle::body, Ink::muted))
    , m_units(makeSentence({}, this, TextStyle::body, Ink::muted))
    , m_present(makeSentence({}, this, TextStyle::small, Ink::muted))
    , m_floor(makeSentence(QStringLiteral("75% floor: 50–74% matches are billed as new words."), this,
          TextStyle::small, Ink::muted))
    , m_caption(makeSentence(
          QStringLiteral("Target basis: bands shown for reference"), this, TextStyle::small, Ink::muted))
    , m_hidesEmpty(new QCheckBox(QStringLiteral("Hide empty bands"), this))
    , m_targetUnits(new CountEdit(QLocale::system()))
    , m_bar(new BandBar(this))
    , m_bands(new FiguresTable(this))
    , m_sums(new FiguresTable(this))
    , m_problems(new NoteList(this))
{
    m_billed->setObjectName(QStringLiteral("billedOn"));
    m_billed->setTextFormat(Qt::RichText);
    m_billed->setTextInteractionFlags(Qt::TextBrowserInteraction);
    m_present->setObjectName(QStringLiteral("presentPrice"));
    m_amount->setObjectName(QStringLiteral("price"));
    m_floor->setObjectName(QStringLiteral("floorSentence"));
    m_caption->setObjectName(QStringLiteral("targetBasis"));
    m_hidesEmpty->setObjectName(QStringLiteral("hidesEmptyBands"));
    m_hidesEmpty->setChecked(view().flag(hidesEmptyKey));
    m_targetUnits->setObjectName(QStringLiteral("targetUnits"));
    m_targetUnits->setOptional(true);
    m_targetUnits->setWidthInCharacters(14);
    m_bands->setObjectName(QStringLiteral("bands"));
    m_bands->setAccessibleName(QStringLiteral("Counts by band"));
    m_sums->setObjectName(QStringLiteral("sums"));
    m_sums->setAccessibleName(QStringLiteral("How the price is worked out"));
    m_sums->setMostRows(1000);
    m_problems->setObjectName(QStringLiteral("priceProblems"));
    addToHeading(m_hidesEmpty);

    auto* head = new QHBoxLayout;
    head->setSpacing(Space::small);
    head->addWidget(m_amount, 0, Qt::AlignBottom);
    head->addWidget(m_beforeTax, 0, Qt::AlignBottom);
    head->addWidget(m_units, 1);
    m_units->setAlignment(Qt::AlignRight | Qt::AlignBottom);
    auto* form = new FormLayout(this);
    m_target = form;
    form->addRow(QStringLiteral("Delivered translation’s words"), m_targetUnits);
    form->addBelow(actionButton(commands().action(Command::countTranslation),
        QStringLiteral("Count the Translation…"), ButtonKind::plain, form));
    for (auto* label : form->findChildren<Label*>()) {
        if (label->buddy() == m_targetUnits)
            m_targetLabel = label;
    }
    content()->addWidget(m_billed);
    content()->addLayout(head);
    content()->addWidget(m_present);
    content()->addWidget(m_target);
    content()->addWidget(m_caption);
    content()->addWidget(m_bar);
    content()->addWidget(m_bands);
    content()->addWidget(m_floor);
    content()->addSpacing(Space::tiny);
    content()->addWidget(m_sums);
    content()->addWidget(m_problems);

    dress();
    connect(m_billed, &QLabel::linkActivated, this, [this] {
        if (job() && job()->invoiceID)
            model().show(AppSection::invoices, *job()->invoiceID);
    });
    connect(m_hidesEmpty, &QCheckBox::toggled, this, [this](bool hides) {
        view().setFlag(hidesEmptyKey, hides);
        if (job())
            refresh();
    });
    connect(m_bar, &BandBar::bandMarked, this, [this](std::optional<MatchBand> band) {
        const auto row = band ? std::find(m_rowBands.begin(), m_rowBands.end(), *band) : m_rowBands.end();
        if (row == m_rowBands.end())
            m_bands->clearSelection();
        else
            m_bands->selectRow(static_cast<int>(row - m_rowBands.begin()));
    });
    connect(m_targetUnits, &CountEdit::committed, this, [this] {
        edit(*m_targetUnits, "Change Target Count",
            [&](Job& job) { job.targetUnits = m_targetUnits->count(); });
    });
}

void PriceCard::revert() { m_targetUnits->revert(); }

void PriceCard::changeEvent(QEvent* event)
{
    JobCard::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        dress();
}

// Figure and words stand on one line.
void PriceCard::dress()
{
    const auto& theme = Theme::of(this);
    const int below = QFontMetrics(theme.font(TextStyle::largeNumber)).descent()
        - QFontMetrics(theme.font(TextStyle::body)).descent();
    for (auto* label : { m_beforeTax, m_units })
        label->setContentsMargins(0, 0, 0, below);
}

void PriceCard::refresh()
{
    const auto* const owner = client();
    if (!owner)
        return;
    const auto price = model().jobs().price(*job());
    const bool isPast = showHead(price);
    showTarget(price);
    showBands(price, *owner, isPast);
    showSums(price, isPast);
    showProblems(price);
}

bool PriceCard::showHead(const JobPrice& price)
{
    const auto& formats = model().formats();
    const auto& figures = model().jobs().figures(*job());
    const auto present = price.subtotal + price.minimumAdjustment;
    const bool isPast = figures.invoice && (figures.net != present || figures.currency != price.currency);
    const auto number = figures.invoice ? qt(*figures.invoice) : QString();
    m_billed->setText(QStringLiteral("Billed on ") + linkText({}, number) + QLatin1Char(':'));
    m_billed->setAccessibleName(QStringLiteral("Billed on %1: %2 before tax")
                                    .arg(number, qt(formats.money(figures.net, figures.currency))));
    m_billed->setVisible(figures.invoice.has_value());
    m_present->setText(QStringLiteral("At the client’s present terms it would be %1 before tax.")
                           .arg(qt(formats.money(present, price.currency))));
    m_present->setVisible(isPast);
    m_amount->setText(
        figures.hasPrice ? qt(formats.money(figures.net, figures.currency)) : QStringLiteral("–"));
    m_amount->setAccessibleName(figures.hasPrice ? QString() : QStringLiteral("No price yet"));
    m_beforeTax->setVisible(figures.hasPrice);
    m_units->setText(QStringLiteral("%1 %2%3").arg(qt(formats.count(price.units)),
        price.basis == WordBasis::target ? QStringLiteral("target ") : QString(), unitWord(price.unit)));
    return isPast;
}

void PriceCard::showTarget(const JobPrice& price)
{
    const bool isTarget = price.basis == WordBasis::target;
    m_target->setVisible(isTarget);
    m_caption->setVisible(isTarget);
    if (!isTarget)
        return;
    const auto name = QStringLiteral("Delivered translation’s ") + unitWord(price.unit);
    m_targetLabel->setText(name);
    m_targetUnits->setAccessibleName(name);
    m_targetUnits->setCount(job()->targetUnits);
    setLocked(m_targetUnits, lockReason());
}

void PriceCard::showBands(const JobPrice& price, const Client& client, bool isPast)
{
    const auto& formats = model().formats();
    const auto totals = model().jobs().counts(*job());
    const bool isTarget = price.basis == WordBasis::target;
    const bool hasFloor = client.weights.floor75 && !isTarget;
    const auto unit = unitWord(price.unit);
    const auto& counts = price.unit == RateUnit::word ? totals.words : totals.characters;
    m_bar->setCounts(counts, unit);
    m_bar->setFloor(hasFloor);
    m_bar->setVisible(sum(counts) > 0);
    m_floor->setVisible(hasFloor);

    int places = 0;
    for (const auto& band : price.bands)
        places = std::max(places, std::min(band.weightedUnits.places(), mostUnitPlaces));
    m_bands->setHeads(isTarget ? QStringList { QStringLiteral("Band"), capital(unit) }
                               : QStringList { QStringLiteral("Band"), capital(unit),
                                   QStringLiteral("Weight"), QStringLiteral("Weighted") });
    std::vector<FiguresTable::Row> rows;
    m_rowBands.clear();
    for (const auto band : allMatchBands) {
        const auto units = counts.valueOr(band, 0);
        if (units == 0 && m_hidesEmpty->isChecked())
            continue;
        FiguresTable::Row row { .isMuted = units == 0 || isTarget || isPast };
        row.cells = { { .text = qt(label(band)), .toolTip = qt(label(band)), .swatch = band },
            { .text = qt(formats.count(units)) } };
        row.spoken = QStringLiteral("%1, %2 %3").arg(qt(label(band)), qt(formats.count(units)), unit);
        for (const auto& line : price.bands) {
            if (line.band != band)
                continue;
            const bool isFloored
                = hasFloor && band == MatchBand::fuzzy50 && line.weight != client.weights.percentOf(band);
            const auto weight = qt(formats.percent(line.weight));
            row.cells.push_back(
                { .text = weight, .toolTip = isFloored ? m_floor->text() : QString(), .hasHint = isFloored });
            row.cells.push_back(unitCell(line.weightedUnits, places, formats));
            row.spoken += QStringLiteral(", weight %1, %2 weighted")
                              .arg(weight, qt(formats.number(line.weightedUnits)));
        }
        rows.push_back(std::move(row));
        m_rowBands.push_back(band);
    }
    FiguresTable::Row total { .isTotal = true, .isMuted = isTarget || isPast };
    total.cells = { { .text = QStringLiteral("Total") }, { .text = qt(formats.count(sum(counts))) } };
    if (!isTarget) {
        total.cells.push_back({});
        total.cells.push_back(unitCell(price.weightedUnits, places, formats));
    }
    rows.push_back(std::move(total));
    m_bands->setRows(rows, hasFloor);
    m_bands->setVisible(sum(counts) > 0);
    m_hidesEmpty->setVisible(sum(counts) > 0);
    m_caption->setVisible(isTarget && sum(counts) > 0);
}

// In the order of the calculation. Lines of nothing are left out, except the total.
void PriceCard::showSums(const JobPrice& price, bool isPast)
{
    const auto& formats = model().formats();
    std::vector<FiguresTable::Row> rows;
    const auto add = [&](const QString& title, const Base::Decimal& amount, bool isTotal = false) {
        if (amount.isZero() && !isTotal)
            return;
        const auto text = qt(formats.amount(amount, price.currency));
        rows.push_back({ .cells = { { .text = title, .toolTip = title }, { .text = text } },
            .spoken = title + QStringLiteral(", ") + text,
            .isTotal = isTotal,
            .isMuted = isPast });
    };
    const auto times = QStringLiteral(" × ");
    add(qt(formats.number(price.weightedUnits.rounded(mostUnitPlaces))) + QLatin1Char(' ')
            + unitWord(price.unit) + times + qt(formats.rate(price.rate)),
        price.translation);
    add(QStringLiteral("Surcharge ") + qt(formats.percent(price.surchargePercent)), price.surcharge);
    for (const auto& [line, amount] : price.extras) {
        auto title = line.title.empty() ? QStringLiteral("Extra line") : qt(line.title);
        title += QStringLiteral(" · ") + qt(formats.number(line.quantity));
        if (!line.unit.empty())
            title += QLatin1Char(' ') + qt(line.unit);
        add(title + times + qt(formats.number(line.unitPrice, 2)), amount);
    }
    const bool hasTax = !price.tax.isZero();
    if (rows.size() > 1 || hasTax || !price.minimumAdjustment.isZero())
        add(QStringLiteral("Subtotal"), price.subtotal);
    add(QStringLiteral("Raised to the minimum fee"), price.minimumAdjustment);
    const auto tax = price.taxLabel.empty() ? QStringLiteral("Tax") : qt(price.taxLabel);
    add(tax + QLatin1Char(' ') + qt(formats.percent(price.taxPercent)), price.tax);
    add(QStringLiteral("Total %1").arg(qt(price.currency)), price.total, true);
    m_sums->setHeads({ QString(), QString() });
    m_sums->setRows(rows);
    m_sums->setVisible(model().jobs().figures(*job()).hasPrice);
}

void PriceCard::showProblems(const JobPrice& price)
{
    using Kind = JobPrice::Problem::Kind;
    std::vector<NoteList::Note> notes;
    const auto openClient = [this] {
        if (const auto* const shown = job())
            model().show(AppSection::clients, shown->clientID);
    };
    for (const auto& problem : price.problems) {
        NoteList::Note note {
            .icon = Icon::warning, .tone = Tone::amber, .sentence = qt(problem.sentence())
        };
        switch (problem.kind) {
        case Kind::badWeight:
            note.link = QStringLiteral("Open Client’s Weights");
            note.follow = openClient;
            break;
        case Kind::analysisMismatch:
            note.link = QStringLiteral("Show the Report’s Totals");
            note.follow = [this] { emit mismatchesWanted(); };
            break;
        case Kind::noTargetCount:
            note.link = QStringLiteral("Type It In");
            note.follow = [this] { m_targetUnits->setFocus(Qt::TabFocusReason); };
            break;
        case Kind::noCharacters:
            note.link = QStringLiteral("Open Client");
            note.follow = openClient;
            break;
        }
        notes.push_back(std::move(note));
    }
    m_problems->setNotes(std::move(notes));
}

} // namespace Pallisande
