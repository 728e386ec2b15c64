#include "Pallisande/Shell/BackupsWindow.h"

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Shell/ComparisonPane.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/Label.h"
#include "Pallisande/Widgets/NoteLine.h"
#include "Pallisande/Widgets/TableDelegate.h"

#include <QEvent>
#include <QHeaderView>
#include <QMenu>
#include <QScreen>
#include <QScrollArea>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace Pallisande {

namespace {

enum Column { whenColumn, whatColumn, clientsColumn, jobsColumn, documentsColumn, lastColumn, columns };

bool isFigure(int column) { return column >= clientsColumn && column <= documentsColumn; }

} // namespace

BackupsWindow::BackupsWindow(AppModel& model, QWidget* parent)
    : QDialog(parent)
    , m_model(model)
    , m_list(new QTreeWidget(this))
    , m_comparison(new ComparisonPane(this))
    , m_unrecorded(new NoteLine(this))
    , m_readOnly(new NoteLine(Icon::lock, Tone::grey,
          QStringLiteral("Your library is read-only, so nothing can be restored now."), this))
    , m_question(makeSentence({}, this))
    , m_restore(makeButton(QStringLiteral("Restore…"), ButtonKind::plain, this))
    , m_showInFolder(makeButton(QStringLiteral("Show in Folder"), ButtonKind::plain, this))
    , m_confirm(makeButton(QStringLiteral("Restore This Copy"), ButtonKind::primary, this))
    , m_cancel(makeButton(QStringLiteral("Cancel"), ButtonKind::plain, this))
    , m_close(makeButton(QStringLiteral("Close"), ButtonKind::plain, this))
{
    setObjectName(QStringLiteral("backups"));
    setWindowTitle(QStringLiteral("Backups"));
    setAttribute(Qt::WA_DeleteOnClose);
    m_unrecorded->setObjectName(QStringLiteral("unrecorded"));
    m_unrecorded->setTinted(true);
    m_unrecorded->addButton(QStringLiteral("Take Over"))->setObjectName(QStringLiteral("takeOver"));
    m_readOnly->setObjectName(QStringLiteral("readOnlyNote"));
    m_question->setObjectName(QStringLiteral("question"));
    m_restore->setObjectName(QStringLiteral("restore"));
    m_showInFolder->setObjectName(QStringLiteral("showInFolder"));
    m_confirm->setObjectName(QStringLiteral("confirmRestore"));
    m_cancel->setObjectName(QStringLiteral("cancelRestore"));
    makeList();
    layOut();

    connect(m_list, &QTreeWidget::itemSelectionChanged, this, &BackupsWindow::compare);
    connect(m_list, &QTreeWidget::customContextMenuRequested, this, &BackupsWindow::showMenu);
    connect(m_restore, &QPushButton::clicked, this, [this] { ask(true); });
    connect(m_cancel, &QPushButton::clicked, this, [this] { ask(false); });
    connect(m_confirm, &QPushButton::clicked, this, &BackupsWindow::restore);
    connect(m_showInFolder, &QPushButton::clicked, this, [this] {
        if (const auto* copy = chosen())
            m_model.services().showInFolder(copy->file);
    });
    connect(m_unrecorded->button(), &QPushButton::clicked, this, &BackupsWindow::takeOver);
    connect(m_close, &QPushButton::clicked, this, &QDialog::close);
    connect(&model, &AppModel::copiesChanged, this, &BackupsWindow::refreshList);
    connect(&model, &AppModel::unrecordedChanged, this, &BackupsWindow::refreshUnrecorded);
    connect(&model, &AppModel::stateChanged, this, [this] {
        refreshUnrecorded();
        compare();
    });
    connect(&model, &AppModel::libraryChanged, this, [this] { m_isOutdated = true; });
    model.copies().list();
    model.copies().lookForUnrecorded();
    refreshUnrecorded();
    compare();
    const auto& theme = Theme::of(this);
    resize(QSize(theme.scaled(760), theme.scaled(700)).boundedTo(screen()->availableSize()));
}

BackupsWindow::~BackupsWindow() { m_model.copies().letGo(); }

void BackupsWindow::makeList()
{
    m_list->setObjectName(QStringLiteral("backupList"));
    m_list->setAccessibleName(QStringLiteral("Backups"));
    m_list->setHeaderLabels({ QStringLiteral("Day"), QStringLiteral("Copy"), QStringLiteral("Clients"),
        QStringLiteral("Jobs"), QStringLiteral("Documents"), QStringLiteral("Last number") });
    m_list->setItemDelegate(new TableDelegate(m_list));
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setAllColumnsShowFocus(true);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setTextElideMode(Qt::ElideMiddle);
    m_list->setContextMenuPolicy(Qt::CustomContextMenu);
    m_list->header()->setSectionsMovable(false);
    m_list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    for (int column = 0; column < columns; ++column) {
        if (isFigure(column))
            m_list->headerItem()->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
    }
}

// What is above the buttons scrolls where large text leaves it too little room.
void BackupsWindow::layOut()
{
    auto* scroll = new QScrollArea(this);
    auto* page = new QWidget(scroll);
    auto* content = new QVBoxLayout(page);
    content->setContentsMargins(0, 0, 0, 0);
    content->setSpacing(Space::medium);
    content->addWidget(new Label(QStringLiteral("Backups"), page, TextStyle::title));
    content->addWidget(makeSentence(
        QStringLiteral("A copy for each day, and those that you made yourself. Restoring one puts "
                       "it in the place of your library, of which a copy is made first."),
        page, TextStyle::body, Ink::muted));
    content->addWidget(m_unrecorded);
    content->addWidget(m_readOnly);
    content->addWidget(m_list, 1);
    content->addWidget(m_comparison, 1);
    scroll->setWidget(page);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);

    auto* answers = new QHBoxLayout;
    answers->addStretch();
    answers->addWidget(m_cancel);
    answers->addWidget(m_confirm);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_restore);
    buttons->addWidget(m_showInFolder);
    buttons->addStretch();
    buttons->addWidget(m_close);
    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(Space::group, Space::group, Space::group, Space::large);
    box->setSpacing(Space::medium);
    box->addWidget(scroll, 1);
    box->addWidget(m_question);
    box->addLayout(answers);
    box->addLayout(buttons);
    measure();
}

void BackupsWindow::measure()
{
    const auto& theme = Theme::of(this);
    m_list->setMinimumHeight(theme.scaled(160));
    m_comparison->setMinimumHeight(theme.scaled(160));
    m_list->header()->setMaximumSectionSize(theme.scaled(260)); // Names that somebody else gave.
}

// --- The list

const LibraryCopies::Copy* BackupsWindow::chosen() const
{
    const auto selected = m_list->selectedItems();
    const int row = selected.isEmpty() ? -1 : m_list->indexOfTopLevelItem(selected.front());
    return row < 0 || row >= static_cast<int>(m_files.size())
        ? nullptr
        : m_model.copies().find(m_files[static_cast<std::size_t>(row)]);
}

// Rows stay where the files do, and with them the selection.
void BackupsWindow::refreshList()
{
    const auto& copies = m_model.copies().all();
    const auto isOfRow = [](const LibraryCopies::Copy& copy, const auto& file) { return copy.file == file; };
    if (copies.empty()
        || !std::equal(copies.begin(), copies.end(), m_files.begin(), m_files.end(), isOfRow)) {
        const auto* const before = chosen();
        const auto file = before ? before->file : std::filesystem::path();
        const bool hadChoice = !m_list->selectedItems().isEmpty();
        const QSignalBlocker blocker(m_list);
        m_list->clear();
        m_files.clear();
        for (const auto& copy : copies) {
            m_files.push_back(copy.file);
            auto* item = new QTreeWidgetItem(m_list);
            for (int column = 0; column < columns; ++column) {
                if (isFigure(column))
                    item->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
            }
            if (copy.file == file)
                m_list->setCurrentItem(item);
        }
        if (copies.empty()) {
            auto* item = new QTreeWidgetItem(m_list, { QStringLiteral("There is no copy yet.") });
            item->setFlags(Qt::NoItemFlags);
            item->setFirstColumnSpanned(true);
        }
        if (hadChoice && !before)
            compare();
    }
    for (int row = 0; const auto& copy : copies)
        fill(*m_list->topLevelItem(row++), copy);
    refreshButtons();
}

void BackupsWindow::fill(QTreeWidgetItem& item, const LibraryCopies::Copy& copy) const
{
    const auto set = [&](int column, const QString& text) {
        item.setText(column, text);
        item.setToolTip(column, qt(copy.failure.empty() ? copy.file.filename().string() : copy.failure));
        item.setData(column, TableDelegate::mutedRole, !copy.contents);
    };
    const auto figure = [&](std::size_t LibraryContents::*count) {
        return copy.contents ? qt(m_model.formats().count(static_cast<std::int64_t>((*copy.contents).*count)))
                             : QString();
    };
    set(whenColumn, qt(copy.when));
    set(whatColumn, qt(copy.what));
    set(clientsColumn, figure(&LibraryContents::clients));
    set(jobsColumn, figure(&LibraryContents::jobs));
    set(documentsColumn, figure(&LibraryContents::documents));
    set(lastColumn,
        copy.isBeingRead()                      ? QStringLiteral("Reading…")
            : !copy.contents                    ? QStringLiteral("can’t be read")
            : copy.contents->lastNumber.empty() ? QStringLiteral("none")
                                                : qt(copy.contents->lastNumber));
}

void BackupsWindow::showMenu(const QPoint& place)
{
    if (!chosen())
        return;
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("backupMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (auto* button : { m_restore, m_showInFolder }) {
        auto* action = menu->addAction(button->text());
        action->setEnabled(button->isEnabled());
        connect(action, &QAction::triggered, button, &QPushButton::click);
    }
    menu->popup(m_list->viewport()->mapToGlobal(place));
}

// --- What can be done

void BackupsWindow::refreshButtons()
{
    const auto* const copy = chosen();
    const auto reason = m_model.readOnly();
    const bool mayRestore = m_model.canEdit() || reason == ReadOnlyReason::missingFile;
    m_isAsking = m_isAsking && copy && copy->contents && mayRestore;
    m_readOnly->setVisible(!mayRestore && !m_model.isOpening());
    m_readOnly->setToolTip(qt(m_model.readOnlyText()));
    m_restore->setEnabled(copy && copy->contents && mayRestore && !m_isAsking);
    m_restore->setToolTip(!mayRestore ? qt(m_model.readOnlyText())
            : !copy                   ? QStringLiteral("Choose a copy first.")
                                      : qt(copy->failure));
    m_showInFolder->setEnabled(copy);
    if (m_isAsking) {
        const auto name = qt(copy->file.filename().string());
        m_question->setText(reason == ReadOnlyReason::missingFile
                ? QStringLiteral("“%1” becomes your library, whose file is missing.").arg(name)
                : QStringLiteral("“%1” takes the place of your library, of which a copy is made first.")
                      .arg(name));
    }
    for (QWidget* widget : { static_cast<QWidget*>(m_question), static_cast<QWidget*>(m_confirm),
             static_cast<QWidget*>(m_cancel) })
        widget->setVisible(m_isAsking);
}

void BackupsWindow::refreshUnrecorded()
{
    const auto numbers = m_model.copies().unrecorded();
    auto* const button = m_unrecorded->button();
    if (!numbers.empty()) {
        const bool isOne = numbers.size() == 1;
        m_unrecorded->show(Icon::warning, Tone::amber,
            QStringLiteral("%1 %2 issued, but your library has no record of %3. The issue log still has %3.")
                .arg(qt(LibraryCopies::enumerated(numbers)),
                    isOne ? QStringLiteral("was") : QStringLiteral("were"),
                    isOne ? QStringLiteral("it") : QStringLiteral("them")));
        button->show();
        m_unrecorded->setVisible(true);
    } else if (button->isVisibleTo(m_unrecorded)) {
        m_unrecorded->hide();
    }
    button->setEnabled(m_model.canEdit());
    button->setToolTip(qt(m_model.readOnlyText()));
}

void BackupsWindow::takeOver()
{
    const bool isDone = m_model.copies().takeOver();
    const auto text = isDone && m_model.notice() ? m_model.notice()->text
        : m_model.problem()                      ? m_model.problem()->text
                                                 : std::string();
    m_unrecorded->show(isDone ? Icon::check : Icon::warning, isDone ? Tone::green : Tone::red, qt(text));
    m_unrecorded->button()->setVisible(!isDone);
    m_unrecorded->setVisible(true);
    announce(m_unrecorded, qt(text));
    compare();
}

// --- Comparing and restoring

void BackupsWindow::compare()
{
    m_isAsking = false;
    m_isOutdated = false;
    refreshButtons();
    const auto* const copy = chosen();
    if (!copy)
        return m_comparison->showSentence(
            QStringLiteral("Choose a copy to see what restoring it would change."));
    m_comparison->showSentence(QStringLiteral("Comparing…"));
    m_model.copies().compare(
        copy->file, [this](const LibraryCopies::Comparison& comparison) { m_comparison->show(comparison); });
}

// The library may have been changed in the main window.
void BackupsWindow::changeEvent(QEvent* event)
{
    QDialog::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        measure();
    if (event->type() == QEvent::ActivationChange && isActiveWindow() && m_isOutdated && !m_isAsking)
        compare();
}

void BackupsWindow::ask(bool isAsking)
{
    m_isAsking = isAsking;
    refreshButtons();
    (isAsking ? m_cancel : m_restore)->setFocus();
    if (isAsking)
        announce(m_question, m_question->text());
}

void BackupsWindow::restore()
{
    const auto* const copy = chosen();
    if (!copy || !m_isAsking)
        return;
    m_model.restoreBackup(copy->file);
    close();
}

} // namespace Pallisande
