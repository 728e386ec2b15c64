#include "Pallisande/Settings/SeriesForm.h"

#include "Pallisande/Model/BusinessProfile.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Settings/SettingsPage.h"
#include "Pallisande/Widgets/NumberEdit.h"

#include <QCheckBox>

namespace Pallisande {

namespace {

constexpr int mostDigits = 9;

struct Words {
    const char *prefix, *digits, *next; // Labels; the last two as a screen reader says them.
};

Words wordsOf(Ledger::Series which)
{
    switch (which) {
    case Ledger::Series::invoices:
        return { "Invoice prefix", "Digits of invoice numbers", "Next invoice number" };
    case Ledger::Series::creditNotes:
        return { "Credit note prefix", "Digits of credit note numbers", "Next credit note number" };
    case Ledger::Series::quotes:
        break;
    }
    return { "Quote prefix", "Digits of quote numbers", "Next quote number" };
}

QWidget* line(std::initializer_list<QWidget*> widgets, QWidget* parent)
{
    auto* row = new QWidget(parent);
    auto* box = new QHBoxLayout(row);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(Space::small);
    for (auto* widget : widgets)
        box->addWidget(widget);
    return row;
}

} // namespace

SeriesForm::SeriesForm(AppModel& model, Ledger::Series which, Edit edit, QWidget* parent)
    : FormLayout(parent)
    , m_model(model)
    , m_which(which)
    , m_edit(std::move(edit))
    , m_prefix(new TextField)
    , m_digits(new CountEdit(QLocale::system()))
    , m_next(new CountEdit(QLocale::system()))
    , m_preview(new Label(this, TextStyle::body, Ink::muted))
    , m_why(makeSentence(QStringLiteral("A series without the year never starts again."), this,
          TextStyle::small, Ink::muted))
    , m_year(new QCheckBox(QStringLiteral("Year in the number")))
    , m_reset(new QCheckBox(QStringLiteral("Start again at 1 each year")))
{
    const auto [prefix, digits, next] = wordsOf(which);
    const auto name = qt(caseNames(which)[static_cast<std::size_t>(which)]);
    m_prefix->setWidthInCharacters(12);
    m_digits->setWidthInCharacters(3);
    m_digits->setRange(1, mostDigits);
    m_digits->setAccessibleName(QString::fromUtf8(digits));
    m_next->setWidthInCharacters(7);
    m_next->setAccessibleName(QString::fromUtf8(next));
    m_next->setCheck([this](const Base::Decimal& value) { return setNext(value); });
    m_prefix->setObjectName(QStringLiteral("prefix.") + name);
    m_digits->setObjectName(QStringLiteral("digits.") + name);
    m_next->setObjectName(QStringLiteral("next.") + name);
    m_preview->setObjectName(QStringLiteral("preview.") + name);
    m_year->setObjectName(QStringLiteral("year.") + name);
    m_reset->setObjectName(QStringLiteral("reset.") + name);
    m_preview->setTextInteractionFlags(Qt::NoTextInteraction);
    addRow(QString::fromUtf8(prefix),
        line({ m_prefix, new Label(QStringLiteral("Digits"), this, TextStyle::body, Ink::muted), m_digits },
            this));
    addRow(QStringLiteral("Next number"), line({ m_next, m_preview }, this));
    addRow({}, m_year);
    addRow({}, m_reset);
    addBelow(m_why);

    connect(m_prefix, &LineField::committed, this, [this] {
        change(m_prefix, [&](NumberSeries& series) { series.prefix = plain(m_prefix->value()); });
    });
    connect(m_digits, &LineField::committed, this,
        [this] { change(m_digits, [&](NumberSeries& series) { series.digits = *m_digits->count(); }); });
    connect(m_year, &QCheckBox::clicked, this,
        [this](bool isOn) { change(nullptr, [&](NumberSeries& series) { series.includeYear = isOn; }); });
    connect(m_reset, &QCheckBox::clicked, this,
        [this](bool isOn) { change(nullptr, [&](NumberSeries& series) { series.resetEachYear = isOn; }); });
}

void SeriesForm::show(const Profile& profile)
{
    const auto& series = Ledger::series(profile, m_which);
    m_prefix->setValue(qt(series.prefix));
    m_digits->setCount(series.digits);
    m_next->setCount(m_model.profile().nextNumber(m_which));
    m_preview->setText(qt(m_model.profile().nextText(m_which)));
    m_year->setChecked(series.includeYear);
    m_reset->setChecked(series.resetEachYear && series.includeYear);
    m_reset->setEnabled(m_model.canEdit() && series.includeYear);
    m_why->setVisible(!series.includeYear);
}

void SeriesForm::change(const QWidget* field, const std::function<void(NumberSeries&)>& how)
{
    m_edit(field, [&](Profile& profile) { how(Ledger::series(profile, m_which)); });
}

QString SeriesForm::setNext(const Base::Decimal& next)
{
    const auto number = next.toInteger();
    if (!number || *number == m_model.profile().nextNumber(m_which)
        || m_model.profile().setNextNumber(m_which, *number))
        return {};
    return takeProblem(m_model);
}

} // namespace Pallisande
