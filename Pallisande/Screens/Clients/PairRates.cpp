#include "Pallisande/Screens/Clients/PairRates.h"

#include "Pallisande/Screens/ClientBox.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/FieldLock.h"
#include "Pallisande/Widgets/NumberEdit.h"

#include <QCompleter>
#include <QGridLayout>

namespace Pallisande {

namespace {

enum Column { source, arrow, target, rate, minimum, removal };
constexpr int languageWidth = 14, moneyWidth = 10; // Characters.
constexpr int leastCharacters = 68; // Of all fields of a rate, for one line.

constexpr int linesOfRate = 3; // The third is the note’s.

QString notBelowZero(const Base::Decimal& value)
{
    return value.isNegative() ? QStringLiteral("A rate can’t be below zero.") : QString();
}

} // namespace

PairRates::PairRates(AppModel& model, ClientEdit edit, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_edit(std::move(edit))
    , m_grid(new QGridLayout)
    , m_add(makeButton(QStringLiteral("Add a Rate"), Icon::plus, ButtonKind::plain, this))
{
    m_grid->setContentsMargins(0, 0, 0, 0);
    m_grid->setHorizontalSpacing(Space::small);
    m_grid->setVerticalSpacing(Space::tiny);
    for (const auto& text : { QStringLiteral("Source"), QStringLiteral("Target"), QStringLiteral("Rate"),
             QStringLiteral("Minimum fee") })
        m_heads.push_back(new Label(text, this, TextStyle::tableHead, Ink::muted));
    m_add->setObjectName(QStringLiteral("addPairRate"));
    marksChange(m_add);
    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(Space::small);
    box->addWidget(new Label(QStringLiteral("Rates for language pairs"), this, TextStyle::bodyStrong));
    box->addLayout(m_grid);
    box->addWidget(m_add, 0, Qt::AlignLeft);
    connect(m_add, &QPushButton::clicked, this, &PairRates::add);
    arrange();
}

void PairRates::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    const auto fits = fontMetrics().averageCharWidth() * leastCharacters < width();
    if (std::exchange(m_isNarrow, !fits) == fits)
        arrange();
}

void PairRates::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange || event->type() == QEvent::FontChange) {
        m_isNarrow = fontMetrics().averageCharWidth() * leastCharacters >= width();
        arrange();
    }
}

void PairRates::arrange()
{
    const auto side = m_isNarrow ? Qt::AlignLeft : Qt::AlignRight; // Figures stand at the right.
    const std::pair<int, int> places[] { { 0, source }, { 0, target },
        { m_isNarrow, m_isNarrow ? source : rate }, { m_isNarrow, m_isNarrow ? target : minimum } };
    for (std::size_t at = 0; at < m_heads.size(); ++at) {
        m_grid->removeWidget(m_heads[at]);
        m_grid->addWidget(m_heads[at], places[at].first, places[at].second);
        m_heads[at]->setAlignment(at < 2 ? Qt::AlignLeft : side);
    }
    for (std::size_t at = 0; at < m_rows.size(); ++at)
        place(*m_rows[at], at);
    m_grid->setColumnStretch(source, 3);
    m_grid->setColumnStretch(target, 3);
    m_grid->setColumnStretch(rate, m_isNarrow ? 0 : 2);
    m_grid->setColumnStretch(minimum, m_isNarrow ? 0 : 3);
}

void PairRates::place(const Row& row, std::size_t at)
{
    const int first = static_cast<int>(at) * linesOfRate + 2, second = first + m_isNarrow;
    const std::tuple<QWidget*, int, int> places[] { { row.source, first, source },
        { row.arrow, first, arrow }, { row.target, first, target },
        { row.rate, second, m_isNarrow ? source : rate },
        { row.minimum, second, m_isNarrow ? target : minimum }, { row.remove, second, removal } };
    for (const auto& [widget, line, column] : places) {
        m_grid->removeWidget(widget);
        m_grid->addWidget(widget, line, column);
    }
    m_grid->removeWidget(row.note);
    m_grid->addWidget(row.note, second + 1, source, 1, removal + 1);
}

void PairRates::show(const Client& client)
{
    const bool isAnother = std::exchange(m_client, client.id) != client.id;
    m_count = client.rates.size();
    while (m_rows.size() < m_count)
        addRow();
    for (std::size_t at = 0; at < m_rows.size(); ++at) {
        auto& row = *m_rows[at];
        const bool isShown = at < m_count;
        for (auto* widget : std::initializer_list<QWidget*> {
                 row.source, row.arrow, row.target, row.rate, row.minimum, row.remove })
            widget->setVisible(isShown);
        if (!isShown) {
            row.note->hide();
            continue;
        }
        if (isAnother || row.id != client.rates[at].id) { // What was typed there belongs to another rate.
            for (auto* field :
                std::initializer_list<LineField*> { row.source, row.target, row.rate, row.minimum })
                field->revert();
        }
        showRow(at, client);
    }
    for (auto* head : m_heads)
        head->setVisible(m_count > 0);
}

PairRates::Row& PairRates::addRow()
{
    const auto at = m_rows.size();
    auto& row = *m_rows.emplace_back(std::make_unique<Row>());
    row.source = new TextField(this);
    row.target = new TextField(this);
    row.arrow = new Label(QStringLiteral("→"), this, TextStyle::body, Ink::muted);
    row.rate = new DecimalEdit(QLocale::system(), this);
    row.minimum = new DecimalEdit(QLocale::system(), this);
    row.remove = makeIconButton(Icon::trash, QStringLiteral("Remove this rate"), this);
    row.note = new FieldNote(row.source, this);
    const auto number = at + 1;
    row.source->setAccessibleName(QStringLiteral("Source language of rate %1").arg(number));
    row.target->setAccessibleName(QStringLiteral("Target language of rate %1").arg(number));
    row.rate->setAccessibleName(QStringLiteral("Rate %1").arg(number));
    row.minimum->setAccessibleName(QStringLiteral("Minimum fee of rate %1").arg(number));
    if (at == 0) // One completer for all rows.
        completeLanguages(row.source, m_model);
    for (auto* language : { row.source, row.target }) {
        language->setWidthInCharacters(languageWidth);
        language->setCompleter(m_rows.front()->source->completer());
    }
    row.rate->setPlaces(2);
    row.rate->setWidthInCharacters(moneyWidth);
    row.rate->setCheck(notBelowZero);
    row.minimum->setOptional(true);
    row.minimum->setWidthInCharacters(moneyWidth);
    row.minimum->setCheck(notBelowZero);
    marksChange(row.remove);

    place(row, at);

    using Change = std::function<void(ClientRate&, const Row&)>;
    const std::pair<LineField*, Change> fields[] {
        { row.source, [](ClientRate& to, const Row& of) { to.pair.source = plain(of.source->value()); } },
        { row.target, [](ClientRate& to, const Row& of) { to.pair.target = plain(of.target->value()); } },
        { row.rate, [](ClientRate& to, const Row& of) { to.rate = *of.rate->value(); } },
        { row.minimum, [](ClientRate& to, const Row& of) { to.minimumFee = of.minimum->value(); } },
    };
    for (const auto& entry : fields) {
        auto* const field = entry.first;
        connect(field, &LineField::committed, this,
            [this, at, field, how = entry.second] { change(at, field, how); });
        connect(field, &LineField::problemChanged, this, [this, at] { showNote(*m_rows[at]); });
        connect(field, &LineField::hintChanged, row.note, &FieldNote::showHint);
    }
    connect(row.remove, &QToolButton::clicked, this, [this, at] { remove(at); });
    return row;
}

void PairRates::showRow(std::size_t at, const Client& client)
{
    auto& row = *m_rows[at];
    const auto& shown = client.rates[at];
    row.id = shown.id;
    row.source->setValue(qt(shown.pair.source));
    row.target->setValue(qt(shown.pair.target));
    row.rate->setUnit(qt(client.currency));
    row.rate->setValue(shown.rate);
    row.minimum->setCurrency(qt(client.currency));
    row.minimum->setPlaceholderText(
        QStringLiteral("client’s (%1)")
            .arg(qt(m_model.formats().amount(client.minimumFee, client.currency))));
    row.minimum->setValue(shown.minimumFee);
    const bool isListed
        = std::any_of(client.rates.begin(), client.rates.begin() + static_cast<std::ptrdiff_t>(at),
            [&](const ClientRate& above) { return above.pair.matches(shown.pair); });
    row.remark = isListed ? QStringLiteral("This pair is listed above; the first rate is used.") : QString();
    showNote(row);
}

void PairRates::showNote(Row& row)
{
    QString problem;
    for (const auto* field :
        std::initializer_list<const LineField*> { row.source, row.target, row.rate, row.minimum }) {
        if (problem.isEmpty())
            problem = field->problem();
    }
    row.note->showProblem(problem.isEmpty() ? row.remark : problem);
}

void PairRates::change(
    std::size_t at, QWidget* field, const std::function<void(ClientRate&, const Row&)>& how)
{
    const auto& row = *m_rows[at];
    m_edit(field, "Change Rate", [&](Client& client) {
        for (auto& shown : client.rates) {
            if (shown.id == row.id)
                how(shown, row);
        }
    });
}

void PairRates::add()
{
    const bool isDone = m_edit(nullptr, "Add Rate", [](Client& client) {
        client.rates.push_back({ .id = Base::Uuid::random(), .pair = {}, .rate = client.defaultRate });
    });
    if (isDone && m_count > 0)
        m_rows[m_count - 1]->source->setFocus(Qt::OtherFocusReason);
}

void PairRates::remove(std::size_t at)
{
    const auto id = m_rows[at]->id;
    m_edit(nullptr, "Remove Rate", [&](Client& client) {
        std::erase_if(client.rates, [&](const ClientRate& rate) { return rate.id == id; });
    });
    if (m_count == 0) // Its own button is gone.
        m_add->setFocus(Qt::OtherFocusReason);
    else
        m_rows[std::min(at, m_count - 1)]->remove->setFocus(Qt::OtherFocusReason);
}

} // namespace Pallisande
