#include "Pallisande/Widgets/BandBar.h"
#include "Pallisande/Widgets/Banner.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/Card.h"
#include "Pallisande/Widgets/Chip.h"
#include "Pallisande/Widgets/ComboBox.h"
#include "Pallisande/Widgets/DateEdit.h"
#include "Pallisande/Widgets/EmptyPage.h"
#include "Pallisande/Widgets/FormLayout.h"
#include "Pallisande/Widgets/NumberEdit.h"
#include "Pallisande/Widgets/Painting.h"
#include "Pallisande/Widgets/RowDelegate.h"
#include "Pallisande/Widgets/SheetDialog.h"
#include "Pallisande/Widgets/SidebarView.h"
#include "Pallisande/Widgets/TableDelegate.h"
#include "Pallisande/Widgets/TextArea.h"
#include "Pallisande/Widgets/ThemeController.h"
#include "Pallisande/Widgets/TimeEdit.h"
#include "Pallisande/Widgets/Toast.h"

#include <QtWidgets>

// Shows the widgets, or saves pictures of them:
//     widget-gallery [--save FOLDER] [--text PERCENT]
// QT_QPA_PLATFORM=offscreen needs no display; QT_SCALE_FACTOR=2 draws at twice the density.
namespace {

using namespace Pallisande;

const QLocale locale("en_GB");
constexpr Base::Day today { 2026, 3, 9 };

QWidget* row(std::initializer_list<QWidget*> widgets, QWidget* parent)
{
    auto* line = new QWidget(parent);
    auto* box = new QHBoxLayout(line);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(Space::small);
    for (auto* widget : widgets)
        box->addWidget(widget);
    box->addStretch();
    return line;
}

QPushButton* disabled(QPushButton* button)
{
    button->setEnabled(false);
    return button;
}

// Every icon in a grid, at its usual size and larger.
class IconSheet : public QWidget {
public:
    using QWidget::QWidget;
    QSize sizeHint() const override { return { 10 * 60, (iconCount + 9) / 10 * 44 }; }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        for (int at = 0; at < iconCount; ++at) {
            const QPointF place(at % 10 * 60, at / 10 * 44);
            drawIcon(painter, Icon(at), QRectF(place + QPointF(4, 12), QSizeF(16, 16)),
                Theme::of(this).colours.text);
            drawIcon(painter, Icon(at), QRectF(place + QPointF(26, 8), QSizeF(24, 24)),
                Theme::of(this).colours.muted);
        }
    }
};

QWidget* controls()
{
    auto* page = new QWidget;
    auto* box = new QVBoxLayout(page);
    box->setContentsMargins(Space::page, Space::page, Space::page, Space::page);
    box->setSpacing(Space::large);

    auto* buttons = new Card("Buttons and chips", page);
    auto* menu = new QPushButton("Open");
    auto* choices = new QMenu(menu);
    choices->addAction(themedIcon(Icon::check), "Open");
    menu->setMenu(choices);
    buttons->addToHeading(makeButton("Show the Report", ButtonKind::quiet, buttons));
    buttons->addToHeading(makeIconButton(Icon::gear, "Settings", buttons));
    buttons->content()->addWidget(
        row({ makeButton("New Job", Icon::plus, ButtonKind::primary, page),
                makeButton("Import Analysis…", Icon::download, ButtonKind::plain, page),
                makeButton("Open Client", ButtonKind::quiet, page), menu,
                makeIconButton(Icon::trash, "Delete", page) },
            buttons));
    buttons->content()->addWidget(row({ disabled(makeButton("Issue…", ButtonKind::primary, page)),
                                          disabled(makeButton("Save Quote…", ButtonKind::plain, page)),
                                          disabled(makeButton("None", ButtonKind::quiet, page)) },
        buttons));
    auto* states = new QWidget(buttons);
    auto* chips = new QGridLayout(states);
    chips->setContentsMargins(0, 0, 0, 0);
    for (int at = 0; at < 6; ++at)
        chips->addWidget(new ChipLabel(Chip::of(JobStatus(at))), 0, at, Qt::AlignLeft);
    for (int at = 0; at < 7; ++at)
        chips->addWidget(new ChipLabel(Chip::of(InvoiceStatus(at))), 1, at, Qt::AlignLeft);
    chips->setColumnStretch(7, 1);
    buttons->content()->addWidget(states);
    auto* ticked = new QCheckBox("Hide empty bands");
    ticked->setChecked(true);
    auto* radio = new QRadioButton("Words");
    radio->setChecked(true);
    auto* locked = new QCheckBox("Main text");
    locked->setChecked(true);
    locked->setEnabled(false);
    buttons->content()->addWidget(
        row({ ticked, new QCheckBox("75% floor"), locked, radio, new QRadioButton("Characters") }, buttons));
    auto* progress = new QProgressBar;
    progress->setValue(40);
    buttons->content()->addWidget(progress);
    box->addWidget(buttons);

    auto* price = new Card("Price", page);
    auto* bar = new BandBar;
    BandMap<std::int64_t> counts;
    const std::int64_t words[] { 120, 2, 300, 410, 220, 180, 90, 260, 2400 };
    for (const auto band : allMatchBands)
        counts[band] = words[static_cast<std::size_t>(band)];
    bar->setCounts(counts, "words");
    bar->setFloor(true);
    price->content()->addWidget(bar);
    auto* table = new QTableWidget(10, 4);
    prepareTable(table);
    table->setHorizontalHeaderLabels({ "Band", "Words", "Weight", "Weighted" });
    std::int64_t total = 0;
    for (int at = 0; at < 10; ++at) {
        const bool isTotal = at == 9;
        const auto band = isTotal ? "Total" : label(MatchBand(at));
        total += isTotal ? 0 : words[at];
        const QString texts[] { QString::fromUtf8(band.data(), qsizetype(band.size())),
            locale.toString(isTotal ? qlonglong(total) : words[at]), isTotal ? "" : "75%", "1,111.25" };
        for (int column = 0; column < 4; ++column) {
            auto* item = new QTableWidgetItem(texts[column]);
            item->setTextAlignment(
                column ? Qt::AlignRight | Qt::AlignVCenter : Qt::AlignLeft | Qt::AlignVCenter);
            item->setData(TableDelegate::totalRole, isTotal);
            item->setData(TableDelegate::mutedRole, at == 1);
            table->setItem(at, column, item);
        }
    }
    for (int column = 0; column < 4; ++column)
        table->horizontalHeaderItem(column)->setTextAlignment(
            column ? Qt::AlignRight | Qt::AlignVCenter : Qt::AlignLeft | Qt::AlignVCenter);
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    table->selectRow(3);
    table->setMinimumHeight(11 * 32);
    price->content()->addWidget(table);
    box->addWidget(price);
    auto* icons = new Card("Icons", page);
    icons->content()->addWidget(new IconSheet);
    box->addWidget(icons);
    return page;
}

QWidget* form(QWidget* parent)
{
    auto* rows = new FormLayout(parent);
    auto* title = new TextField;
    title->setValue("Annual report, part 2");
    rows->addRow("&Title", title, FormLayout::Width::stretching);
    auto* client = new ComboBox;
    client->addItems({ "Nordwind GmbH", "Acme Translations Ltd", "Übersetzungsbüro Ost" });
    client->setSearchable(true);
    rows->addRow("&Client", client);
    auto* amount = new DecimalEdit(locale);
    amount->setCurrency("EUR");
    amount->setText("12,3x");
    rows->addRow("Amount", amount);
    amount->commit();
    auto* rate = new DecimalEdit(locale);
    rate->setUnit("EUR");
    rate->setPlaces(2);
    rate->setValue(Base::Decimal::ofParts(835, -4));
    rows->addRow("Rate", rate);
    rows->addBelow("EUR per word, for this job only");
    auto* paid = new DecimalEdit(locale);
    paid->setCurrency("EUR");
    rows->addRow("Received", paid);
    paid->setText("1,234");
    paid->commit();
    auto* day = new DateEdit(locale, [] { return today; });
    day->setValue(Base::Day { 2026, 3, 6 });
    auto* time = new TimeEdit(locale);
    time->setValue(17 * 60);
    rows->addRow("Deadline", row({ day, time, makeButton("Tomorrow", ButtonKind::quiet, rows) }, rows));
    auto* locked = new TextField;
    locked->setValue("INV-2026-007");
    locked->setReadOnly(true);
    rows->addRow("Invoice", locked);
    auto* off = new TextField;
    off->setPlaceholderText("Not given yet");
    off->setEnabled(false);
    rows->addRow("Quote number", off);
    auto* notes = new TextArea;
    notes->setValue("Glossary follows on Monday.\nAsk for the slides.");
    rows->addRow("Notes", notes, FormLayout::Width::stretching);
    return rows;
}

QWidget* forms()
{
    auto* page = new QWidget;
    auto* box = new QVBoxLayout(page);
    box->setContentsMargins(Space::page, Space::page, Space::page, Space::page);
    box->setSpacing(Space::large);
    auto* large = new Label("621.46 EUR", page, TextStyle::largeNumber);
    box->addWidget(new Label("Annual report, part 2", page, TextStyle::title));
    box->addWidget(large);
    auto* card = new Card("Details", page);
    card->content()->addWidget(form(card));
    box->addWidget(card);
    auto* empty = new EmptyPage(Icon::dropTray, "Drop documents or folders here to count them.", page);
    empty->setExplanation(
        "Word, PowerPoint, Excel, OpenDocument, PDF, HTML, RTF, text and subtitles. Reading a "
        "document never changes it.");
    empty->addButton("Add Files…", ButtonKind::primary);
    empty->addButton("Try the Sample Documents", ButtonKind::plain);
    empty->setDropArea(true);
    box->addWidget(empty);
    box->addStretch();
    return page;
}

QWidget* lists()
{
    auto* page = new QWidget;
    auto* stack = new QVBoxLayout(page);
    stack->setContentsMargins(0, 0, 0, 0);
    stack->setSpacing(0);
    auto* banner = new Banner;
    stack->addWidget(banner);
    auto* box = new QHBoxLayout;
    box->setSpacing(0);
    stack->addLayout(box, 1);
    auto* sidebar = new SidebarView;
    sidebar->setItems({ { Icon::clock, "Deadlines", 3, true, false, "Deadlines, 1 overdue, 2 due today" },
        { Icon::list, "Jobs", 12, false, false, "Jobs, 12 open" },
        { Icon::sigma, "Count", 4, false, true, "" }, { Icon::person, "Clients", 0, false, false, "" },
        { Icon::invoice, "Invoices", 2, true, false, "" }, { Icon::barChart, "Year", 0, false, false, "" },
        { Icon::twoArrows, "Rates", 0, false, true, "" } });
    sidebar->setCurrent(1);
    sidebar->setFixedWidth(SidebarView::usualWidth);
    box->addWidget(sidebar);
    auto* list = new QListView;
    list->setFrameShape(QFrame::NoFrame);
    auto* model = new QStandardItemModel(page);
    const struct {
        const char *title, *detail, *figure;
        Chip chip;
    } rows[] { { "Annual report, part 2", "Nordwind GmbH · en → de · 3 days late", "513.60",
                   Chip::of(JobStatus::inProgress) },
        { "Leaflet", "Acme · fr → en · due tomorrow 17:00", "60.00", Chip::of(JobStatus::quote) },
        { "User manual of the pump station, third edition with corrections",
            "Nordwind · en → de · delivered 2 Mar", "12,240.00", Chip::of(JobStatus::delivered) },
        { "Untitled job", "Übersetzungsbüro Ost · ja → de · on INV-2026-007", "–",
            Chip::of(JobStatus::invoiced) },
        { "Safety data sheet", "Acme · en → fr", "310.00", Chip::of(InvoiceStatus::overdue) } };
    for (const auto& [title, detail, figure, chip] : rows) {
        auto* item = new QStandardItem(title);
        item->setData(figure, figureRole);
        item->setData(detail, detailRole);
        item->setData(QVariant::fromValue(chip), chipRole);
        item->setData(item->text() == "Untitled job", placeholderRole);
        item->setData(item->text() == "Leaflet" ? "The price leaves something out." : "", warningRole);
        model->appendRow(item);
    }
    list->setModel(model);
    list->setItemDelegate(new RowDelegate(list));
    list->setCurrentIndex(model->index(1, 0));
    list->setFixedWidth(340);
    box->addWidget(list);
    auto* empty = new EmptyPage(Icon::list, "Select a job to see its price.", page);
    box->addWidget(empty, 1);
    auto* toast = new Toast(empty);
    banner->showProblem(
        "Pallisande couldn’t save your library: the disk is full. What you typed is kept and will be "
        "saved as soon as there is room.",
        "Try Again");
    QTimer::singleShot(0, toast, [toast] { toast->showNotice("“Leaflet” was deleted.", "Undo"); });
    return page;
}

// Toolbar, tabs, splitter, tree: what is Qt's own in our style.
QWidget* shell()
{
    auto* page = new QMainWindow;
    auto* bar = page->addToolBar("Toolbar");
    bar->setMovable(false);
    bar->addWidget(new Label("Jobs", bar, TextStyle::title));
    auto* filter = new QToolButton;
    filter->setText("Any client");
    filter->setMenu(new QMenu(filter));
    filter->setPopupMode(QToolButton::InstantPopup);
    setKind(filter, ButtonKind::plain);
    bar->addWidget(filter);
    auto* add = new QToolButton;
    add->setText("New Job");
    add->setIcon(themedIcon(Icon::plus));
    add->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setKind(add, ButtonKind::primary);
    bar->addWidget(add);
    for (const auto* title : { "&File", "&Edit", "&Job" })
        page->menuBar()->addMenu(title);
    auto* split = new QSplitter;
    auto* tree = new QTreeWidget;
    tree->setHeaderLabels({ "File", "Words" });
    tree->setFrameShape(QFrame::NoFrame);
    auto* file = new QTreeWidgetItem(tree, { "manual.docx", "8,120" });
    new QTreeWidgetItem(file, { "Main text", "8,000" });
    new QTreeWidgetItem(tree, { "deck.pptx", "1,900" });
    tree->expandAll();
    split->addWidget(tree);
    auto* tabs = new QTabWidget;
    tabs->addTab(new EmptyPage(Icon::folder, "The library page.", tabs), themedIcon(Icon::folder), "Library");
    tabs->addTab(new QWidget, themedIcon(Icon::invoice), "Invoices");
    split->addWidget(tabs);
    page->setCentralWidget(split);
    return page;
}

QMenu* menu(QWidget* parent)
{
    auto* list = new QMenu(parent);
    auto* undo = list->addAction(themedIcon(Icon::undo), "&Undo Change Rate");
    undo->setShortcut(Qt::CTRL | Qt::Key_Z);
    list->addAction("Redo")->setEnabled(false);
    list->addSeparator();
    auto* floor = list->addAction("75% floor");
    floor->setCheckable(true);
    floor->setChecked(true);
    list->addMenu("Set &Status")->addAction("Delivered");
    list->setActiveAction(undo);
    return list;
}

SheetDialog* sheet(QWidget* parent)
{
    auto* dialog = new SheetDialog("New Job",
        "A job holds the counts, the deadline and the price of one piece of work.",
        SheetDialog::Width::medium, parent);
    dialog->content()->addWidget(form(dialog));
    dialog->setDefault("Add Job", [] { return QString("Add a client first."); });
    dialog->addAside(makeButton("More…", ButtonKind::quiet, dialog));
    dialog->setFirstField(dialog->findChild<TextField*>());
    dialog->showError("A job belongs to a client, whose rates and weights price it.");
    return dialog;
}

void settle()
{
    QEventLoop loop;
    QTimer::singleShot(50, &loop, &QEventLoop::quit);
    loop.exec();
}

void save(const QString& folder, ThemeController& controller)
{
    const auto density = qEnvironmentVariable("QT_SCALE_FACTOR", "1");
    for (const auto& [appearance, name] :
        { std::pair(Appearance::light, "light"), { Appearance::dark, "dark" } }) {
        controller.setAppearance(appearance);
        const std::pair<QWidget*, const char*> pages[] { { controls(), "controls" }, { forms(), "forms" },
            { lists(), "lists" }, { shell(), "shell" } };
        for (const auto& [page, title] : pages) {
            page->resize(920, 700);
            page->show();
            page->resize(920, std::max(700, page->heightForWidth(920)));
            QApplication::setActiveWindow(page);
            if (auto* field = page->findChild<DateEdit*>())
                field->setFocus(Qt::TabFocusReason);
            settle();
            page->grab().save(QStringLiteral("%1/%2-%3-%4x.png").arg(folder, title, name, density));
            delete page;
        }
        QWidget window;
        window.resize(920, 780);
        window.show();
        auto* list = menu(&window);
        list->popup({ 0, 0 });
        settle();
        list->grab().save(QStringLiteral("%1/menu-%2-%3x.png").arg(folder, name, density));
        list->close();
        auto* dialog = sheet(&window);
        dialog->openSheet();
        settle();
        dialog->grab().save(QStringLiteral("%1/sheet-%2-%3x.png").arg(folder, name, density));
        auto* day = dialog->findChild<DateEdit*>();
        day->showCalendar();
        if (auto* popup = QApplication::activePopupWidget()) {
            settle();
            popup->grab().save(QStringLiteral("%1/calendar-%2-%3x.png").arg(folder, name, density));
            popup->close();
        }
        dialog->findChild<ComboBox*>()->showPopup();
        if (auto* popup = QApplication::activePopupWidget()) {
            settle();
            popup->grab().save(QStringLiteral("%1/choices-%2-%3x.png").arg(folder, name, density));
            popup->close();
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QCommandLineParser options;
    options.addOptions(
        { { "save", "Saves pictures.", "folder" }, { "text", "Size of the text.", "percent", "100" } });
    options.addHelpOption();
    options.process(application);
    ThemeController controller(application, [] { return SystemLook {}; });
    controller.setTextSize(options.value("text").toInt());
    if (options.isSet("save")) {
        QDir().mkpath(options.value("save"));
        save(options.value("save"), controller);
        return 0;
    }
    std::unique_ptr<QWidget> pages[] { std::unique_ptr<QWidget>(controls()),
        std::unique_ptr<QWidget>(forms()), std::unique_ptr<QWidget>(lists()) };
    for (const auto& page : pages)
        page->show();
    return QApplication::exec();
}
