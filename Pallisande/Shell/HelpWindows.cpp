#include "Pallisande/Shell/HelpWindows.h"

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/Label.h"

#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace Pallisande {

namespace {

// Title above, what it shows, and a button that closes it.
QVBoxLayout* frame(QDialog& dialog, const QString& title)
{
    dialog.setWindowTitle(title);
    dialog.setAttribute(Qt::WA_DeleteOnClose);
    auto* box = new QVBoxLayout(&dialog);
    box->setContentsMargins(Space::group, Space::group, Space::group, Space::large);
    box->setSpacing(Space::large);
    box->addWidget(new Label(title, &dialog, TextStyle::title));
    return box;
}

void addClose(QDialog& dialog, QVBoxLayout& box)
{
    auto* close = makeButton(QStringLiteral("Close"), ButtonKind::plain, &dialog);
    close->setDefault(true);
    QObject::connect(close, &QPushButton::clicked, &dialog, &QDialog::close);
    auto* row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(close);
    box.addLayout(row);
}

QTreeWidget* makeList(const QStringList& heads, const QString& name, QWidget* parent)
{
    auto* list = new QTreeWidget(parent);
    list->setAccessibleName(name);
    list->setColumnCount(static_cast<int>(heads.size()));
    list->setHeaderLabels(heads);
    list->setRootIsDecorated(false);
    list->setFrameShape(QFrame::NoFrame);
    list->setTabKeyNavigation(false);
    list->header()->setSectionsMovable(false);
    return list;
}

QString withoutMnemonic(QString text) { return text.remove(QLatin1Char('&')); }

void addShortcuts(QTreeWidget& list, QTreeWidgetItem* group, const QMenu& menu)
{
    for (const auto* action : menu.actions()) {
        if (action->menu()) {
            addShortcuts(list, group, *action->menu());
        } else if (!action->shortcut().isEmpty()) {
            QStringList keys;
            for (const auto& key : action->shortcuts())
                keys += key.toString(QKeySequence::NativeText);
            auto* item = new QTreeWidgetItem(group);
            item->setText(0, withoutMnemonic(action->text()));
            item->setText(1, keys.join(QStringLiteral(" or ")));
        }
    }
}

} // namespace

ShortcutsWindow::ShortcutsWindow(const QMenuBar& menus, QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("shortcuts"));
    auto* box = frame(*this, QStringLiteral("Keyboard Shortcuts"));
    auto* list = makeList(
        { QStringLiteral("Command"), QStringLiteral("Keys") }, QStringLiteral("Keyboard Shortcuts"), this);
    for (const auto* action : menus.actions()) {
        auto* group = new QTreeWidgetItem(list);
        group->setText(0, withoutMnemonic(action->text()));
        group->setFont(0, Theme::of(this).font(TextStyle::bodyStrong));
        addShortcuts(*list, group, *action->menu());
        if (group->childCount() == 0)
            delete group;
    }
    auto* around = new QTreeWidgetItem(list);
    around->setText(0, QStringLiteral("Getting around"));
    around->setFont(0, Theme::of(this).font(TextStyle::bodyStrong));
    const std::pair<QString, QString> ways[] {
        { QStringLiteral("Next part of the window"), QStringLiteral("F6") },
        { QStringLiteral("Previous part of the window"), QStringLiteral("Shift+F6") },
        { QStringLiteral("From a list to its first field"), QStringLiteral("Return") },
        { QStringLiteral("From a field to the list"), QStringLiteral("Esc") },
        { QStringLiteral("Open a choice or a calendar"), QStringLiteral("Alt+Down or F4") },
        { QStringLiteral("Context menu"), QStringLiteral("Menu or Shift+F10") },
    };
    for (const auto& [what, keys] : ways) {
        auto* item = new QTreeWidgetItem(around);
        item->setText(0, what);
        item->setText(1, keys);
    }
    list->expandAll();
    list->resizeColumnToContents(0);
    list->setColumnWidth(0, list->columnWidth(0) + Space::page);
    box->addWidget(list, 1);
    addClose(*this, *box);
    resize(Theme::of(this).scaled(520), Theme::of(this).scaled(560));
}

MessagesWindow::MessagesWindow(AppModel& model, QWidget* parent)
    : QDialog(parent)
    , m_model(model)
    , m_list(makeList(
          { QStringLiteral("Time"), QStringLiteral("Message") }, QStringLiteral("Recent Messages"), this))
{
    setObjectName(QStringLiteral("recentMessages"));
    auto* box = frame(*this, QStringLiteral("Recent Messages"));
    m_list->setWordWrap(true);
    box->addWidget(m_list, 1);
    addClose(*this, *box);
    connect(&model, &AppModel::problemChanged, this, &MessagesWindow::refresh);
    connect(&model, &AppModel::noticeChanged, this, &MessagesWindow::refresh);
    refresh();
    resize(Theme::of(this).scaled(640), Theme::of(this).scaled(420));
}

void MessagesWindow::refresh()
{
    m_list->clear();
    const auto& past = m_model.pastMessages();
    for (auto message = past.rbegin(); message != past.rend(); ++message) {
        const auto at = m_model.services().calendar.components(message->when);
        auto* item = new QTreeWidgetItem(m_list);
        item->setText(0, qt(Formats::day(at.day) + ", " + m_model.formats().time(at)));
        item->setIcon(1, themedIcon(message->isProblem ? Icon::warning : Icon::check));
        item->setText(1, qt(message->text));
        item->setToolTip(1, qt(message->text));
    }
    if (past.empty())
        (new QTreeWidgetItem(m_list))->setText(1, QStringLiteral("Nothing was said yet."));
    m_list->resizeColumnToContents(0);
}

AboutWindow::AboutWindow(QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("about"));
    setWindowTitle(QStringLiteral("About Pallisande"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(Space::page, Space::page, Space::page, Space::large);
    box->setSpacing(Space::small);
    constexpr int iconSize = 96;
    auto* icon = new QLabel(this);
    icon->setPixmap(applicationIcon().pixmap(QSize(iconSize, iconSize), devicePixelRatioF()));
    box->addWidget(icon, 0, Qt::AlignHCenter);
    box->addWidget(new Label(QStringLiteral("Pallisande"), this, TextStyle::title), 0, Qt::AlignHCenter);
    box->addWidget(
        new Label(QStringLiteral("Version %1").arg(PALLISANDE_VERSION), this, TextStyle::body, Ink::muted), 0,
        Qt::AlignHCenter);
    auto* sentence = makeSentence(
        QStringLiteral(
            "Clients, jobs, counts and invoices of a freelance translator, in one folder on your computer."),
        this);
    sentence->setAlignment(Qt::AlignHCenter);
    sentence->setMinimumWidth(Theme::of(this).scaled(320));
    box->addSpacing(Space::small);
    box->addWidget(sentence);
    box->addSpacing(Space::large);
    addClose(*this, *box);
}

} // namespace Pallisande
