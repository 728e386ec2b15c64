#include "Pallisande/Screens/Invoices/LineRow.h"

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Model/JobSection.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/FormLayout.h"
#include "Pallisande/Widgets/NumberEdit.h"
#include "TamberlinKit/Quotes/Money.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QMenu>

namespace Pallisande {

namespace {

constexpr int figureWidth = 84, amountWidth = 96, actWidth = 28;

} // namespace

LineRow::LineRow(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_grid(new QGridLayout(this))
    , m_title(new TextField(this))
    , m_detail(new TextField(this))
    , m_unit(new TextField(this))
    , m_quantity(new DecimalEdit(QLocale::system(), this))
    , m_price(new DecimalEdit(QLocale::system(), this))
    , m_amount(new DecimalEdit(QLocale::system(), this))
    , m_fields { m_title, m_detail, m_quantity, m_unit, m_price, m_amount }
    , m_note(new FieldNote(m_title, this))
    , m_times(new Label(QStringLiteral("×"), this, TextStyle::body, Ink::muted))
    , m_equals(new Label(QStringLiteral("="), this, TextStyle::body, Ink::muted))
    , m_menuButton(new QToolButton(this))
    , m_job(makeButton(QStringLiteral("from job ›"), ButtonKind::quiet, this))
    , m_typed(new QWidget(this))
{
    m_title->setPlaceholderText(QStringLiteral("Title"));
    m_detail->setPlaceholderText(QStringLiteral("Detail"));
    m_unit->setPlaceholderText(QStringLiteral("Unit"));
    m_title->setObjectName(QStringLiteral("lineTitle"));
    m_detail->setObjectName(QStringLiteral("lineDetail"));
    m_quantity->setObjectName(QStringLiteral("lineQuantity"));
    m_unit->setObjectName(QStringLiteral("lineUnit"));
    m_price->setObjectName(QStringLiteral("linePrice"));
    m_amount->setObjectName(QStringLiteral("lineAmount"));
    m_job->setObjectName(QStringLiteral("lineJob"));
    for (auto* figure : { m_quantity, m_price, m_amount })
        figure->setAlignment(Qt::AlignRight);
    m_price->setPlaces(2);
    for (auto* field : m_fields) {
        field->installEventFilter(this);
        field->setMinimumWidth(0);
    }
    for (auto* field : { static_cast<LineField*>(m_title), static_cast<LineField*>(m_detail),
             static_cast<LineField*>(m_quantity), static_cast<LineField*>(m_unit),
             static_cast<LineField*>(m_price), static_cast<LineField*>(m_amount) }) {
        connect(field, &LineField::problemChanged, m_note, &FieldNote::showProblem);
        connect(field, &LineField::hintChanged, m_note, &FieldNote::showHint);
    }

    auto* typed = new QHBoxLayout(m_typed);
    typed->setContentsMargins(0, 0, 0, 0);
    typed->setSpacing(Space::tiny);
    m_typedText = new Label(m_typed, TextStyle::small, Ink::amber);
    m_typedText->setObjectName(QStringLiteral("lineTyped"));
    m_reckon = makeButton({}, ButtonKind::quiet, m_typed);
    m_reckon->setObjectName(QStringLiteral("lineReckon"));
    typed->addStretch();
    typed->addWidget(m_typedText);
    typed->addWidget(m_reckon);

    m_menuButton->setObjectName(QStringLiteral("lineActs"));
    m_menuButton->setFocusPolicy(Qt::TabFocus);
    m_menuButton->setPopupMode(QToolButton::InstantPopup);
    m_menuButton->setMenu(new QMenu(m_menuButton));
    connect(m_menuButton->menu(), &QMenu::aboutToShow, this, &LineRow::refreshMenu);
    refreshMenu();

    connect(m_title, &LineField::committed, this,
        [this] { edit([text = plain(m_title->value())](InvoiceLine& line) { line.title = text; }); });
    connect(m_detail, &LineField::committed, this,
        [this] { edit([text = plain(m_detail->value())](InvoiceLine& line) { line.detail = text; }); });
    connect(m_unit, &LineField::committed, this,
        [this] { edit([text = plain(m_unit->value())](InvoiceLine& line) { line.unit = text; }); });
    connect(m_quantity, &LineField::committed, this,
        [this] { edit([value = *m_quantity->value()](InvoiceLine& line) { line.quantity = value; }); });
    connect(m_price, &LineField::committed, this,
        [this] { edit([value = *m_price->value()](InvoiceLine& line) { line.unitPrice = value; }); });
    connect(m_amount, &LineField::committed, this,
        [this] { edit([value = *m_amount->value()](InvoiceLine& line) { line.amount = value; }); });
    connect(m_reckon, &QPushButton::clicked, this, [this] {
        edit([currency = plain(m_currency)](InvoiceLine& line) {
            line.amount = Tamberlin::Money::roundToCurrency(line.quantity * line.unitPrice, currency);
        });
    });
    connect(m_job, &QPushButton::clicked, this, [this] {
        if (m_line.jobID)
            m_model.show(AppSection::jobs, *m_line.jobID);
    });
    m_grid->setContentsMargins(0, 0, 0, 0);
    m_grid->setHorizontalSpacing(Space::small);
    m_grid->setVerticalSpacing(Space::tiny);
    arrange();
}

void LineRow::show(const Base::Uuid& invoiceID, const InvoiceLine& line, int place, const QString& currency)
{
    const bool isAnother = line.id != m_line.id || invoiceID != m_invoiceID;
    m_invoiceID = invoiceID;
    m_line = line;
    m_currency = currency;
    if (isAnother) {
        for (auto* field : { static_cast<LineField*>(m_title), static_cast<LineField*>(m_detail),
                 static_cast<LineField*>(m_quantity), static_cast<LineField*>(m_unit),
                 static_cast<LineField*>(m_price), static_cast<LineField*>(m_amount) })
            field->revert();
        const auto name = [&](const char* what) {
            return QStringLiteral("%1 of line %2").arg(QLatin1String(what)).arg(place + 1);
        };
        m_title->setAccessibleName(name("Title"));
        m_detail->setAccessibleName(name("Detail"));
        m_quantity->setAccessibleName(name("Quantity"));
        m_unit->setAccessibleName(name("Unit"));
        m_price->setAccessibleName(name("Price"));
        m_amount->setAccessibleName(name("Amount"));
        m_job->setAccessibleName(name("Job"));
        m_menuButton->setAccessibleName(name("Actions"));
        m_menuButton->setToolTip(QStringLiteral("Move or remove this line"));
    }
    m_amount->setCurrency(currency);
    m_title->setValue(qt(line.title));
    m_detail->setValue(qt(line.detail));
    m_unit->setValue(qt(line.unit));
    m_quantity->setValue(line.quantity);
    m_price->setValue(line.unitPrice);
    m_amount->setValue(line.amount);
    for (auto* field : { m_title, m_detail }) {
        if (!field->hasFocus()) // Long texts show their beginning.
            field->home(false);
    }
    m_job->setVisible(line.jobID.has_value());
    const auto code = plain(currency);
    const bool isTyped = InvoiceSection::amountIsTyped(line, code);
    const auto reckoned = m_model.formats().amount(
        Tamberlin::Money::roundToCurrency(line.quantity * line.unitPrice, code), code);
    m_typedText->setText(QStringLiteral("Typed over"));
    m_typedText->setToolTip(QStringLiteral("Quantity × price is %1.").arg(qt(reckoned)));
    m_reckon->setText(QStringLiteral("Use %1").arg(qt(reckoned)));
    m_reckon->setToolTip(QStringLiteral("Quantity × price"));
    m_typed->setVisible(isTyped);
    const bool canEdit = m_model.canEdit();
    const auto reason = qt(m_model.readOnlyText());
    for (auto* field : m_fields) {
        static_cast<QLineEdit*>(field)->setReadOnly(!canEdit);
        field->setToolTip(canEdit ? QString() : reason);
    }
    m_menuButton->setEnabled(canEdit);
    m_reckon->setEnabled(canEdit);
}

void LineRow::edit(const std::function<void(InvoiceLine&)>& change)
{
    const auto invoiceID = m_invoiceID, line = m_line.id;
    if (m_model.invoices().editLine(invoiceID, line, change) || line != m_line.id)
        return;
    if (const auto* const invoice = m_model.invoice(invoiceID)) { // Refused: what is recorded is shown again.
        for (const auto& own : invoice->lines) {
            if (own.id == line) {
                m_title->setValue(qt(own.title));
                m_detail->setValue(qt(own.detail));
                m_unit->setValue(qt(own.unit));
                m_quantity->setValue(own.quantity);
                m_price->setValue(own.unitPrice);
                m_amount->setValue(own.amount);
            }
        }
    }
}

void LineRow::refreshMenu()
{
    auto* menu = m_menuButton->menu();
    menu->clear();
    const auto add = [&](const QString& text, const QKeySequence& keys, auto what) {
        auto* action = menu->addAction(text, this, what);
        action->setShortcut(keys);
        action->setShortcutContext(Qt::WidgetShortcut); // Shown here; the fields answer the keys.
    };
    add(QStringLiteral("Move Up"), Qt::ALT | Qt::Key_Up, [this] { emit moveWanted(-1); });
    add(QStringLiteral("Move Down"), Qt::ALT | Qt::Key_Down, [this] { emit moveWanted(1); });
    menu->addSeparator();
    add(QStringLiteral("Remove Line"), {}, [this] { emit removeWanted(); });
}

void LineRow::setShape(Shape shape)
{
    if (std::exchange(m_shape, shape) != shape)
        arrange();
}

int LineRow::widthOf(const QWidget* widget, Column column)
{
    const auto& theme = Theme::of(widget);
    return theme.scaled(column == acts ? actWidth : column == amount ? amountWidth : figureWidth);
}

void LineRow::arrange()
{
    while (auto* item = m_grid->takeAt(0))
        delete item; // The widgets stay.
    const bool isWide = m_shape == Shape::wide;
    m_times->setVisible(!isWide);
    m_equals->setVisible(!isWide);
    for (int column = 0; column < 8; ++column)
        m_grid->setColumnStretch(column, 0);
    const auto fix = [&](QWidget* field, Column column) {
        const int width = widthOf(this, column);
        if (isWide)
            field->setFixedWidth(width);
        else {
            field->setMinimumWidth(width / 2);
            field->setMaximumWidth(QWIDGETSIZE_MAX);
        }
    };
    fix(m_quantity, quantity);
    fix(m_unit, unit);
    fix(m_price, price);
    fix(m_amount, amount);
    m_menuButton->setFixedWidth(widthOf(this, acts));
    if (isWide) {
        m_grid->setColumnStretch(title, 1);
        m_grid->addWidget(m_title, 0, title);
        m_grid->addWidget(m_quantity, 0, quantity);
        m_grid->addWidget(m_unit, 0, unit);
        m_grid->addWidget(m_price, 0, price);
        m_grid->addWidget(m_amount, 0, amount);
        m_grid->addWidget(m_menuButton, 0, acts);
        m_grid->addWidget(m_detail, 1, title);
        m_grid->addWidget(m_job, 1, quantity, 1, 2, Qt::AlignLeft);
        m_grid->addWidget(m_typed, 1, price, 1, 2, Qt::AlignRight);
        m_grid->addWidget(m_note, 2, 0, 1, columns);
    } else {
        auto* figures = new QHBoxLayout;
        figures->setSpacing(Space::tiny);
        figures->addWidget(m_quantity, 3);
        figures->addWidget(m_unit, 3);
        auto* results = m_shape == Shape::narrow ? figures : new QHBoxLayout;
        results->setSpacing(Space::tiny);
        results->addWidget(m_times);
        results->addWidget(m_price, 3);
        results->addWidget(m_equals);
        results->addWidget(m_amount, 4);
        auto* below = new QHBoxLayout;
        below->addWidget(m_job);
        below->addStretch();
        below->addWidget(m_typed);
        m_grid->setColumnStretch(0, 1);
        m_grid->addWidget(m_title, 0, 0);
        m_grid->addWidget(m_menuButton, 0, 1);
        m_grid->addWidget(m_detail, 1, 0, 1, 2);
        m_grid->addLayout(figures, 2, 0, 1, 2);
        if (results != figures)
            m_grid->addLayout(results, 3, 0, 1, 2);
        m_grid->addLayout(below, 4, 0, 1, 2);
        m_grid->addWidget(m_note, 5, 0, 1, 2);
    }
}

QWidget* LineRow::chainAfter(QWidget* before)
{
    const auto put = [&](QWidget* widget) {
        setTabOrder(before, widget);
        before = widget;
    };
    for (auto* field : m_fields)
        put(field);
    put(m_menuButton);
    put(m_job);
    put(m_reckon);
    return before;
}

int LineRow::focusedField() const
{
    for (std::size_t place = 0; place < m_fields.size(); ++place) {
        if (m_fields[place]->hasFocus())
            return static_cast<int>(place);
    }
    return -1;
}

void LineRow::focusField(int field)
{
    if (field >= 0)
        m_fields[static_cast<std::size_t>(field)]->setFocus(Qt::OtherFocusReason);
}

bool LineRow::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool isMove
            = key->modifiers() == Qt::AltModifier && (key->key() == Qt::Key_Up || key->key() == Qt::Key_Down);
        if (isMove) {
            if (static_cast<LineField*>(static_cast<QWidget*>(watched))->commit())
                emit moveWanted(key->key() == Qt::Key_Up ? -1 : 1);
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void LineRow::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        arrange();
}

} // namespace Pallisande
