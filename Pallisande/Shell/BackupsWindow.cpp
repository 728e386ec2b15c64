#include "Pallisande/Shell/BackupsWindow.h"

#include "Base/DurableFile.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/Label.h"

#include <QHeaderView>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace Pallisande {

// What is in a copy.
struct BackupsWindow::Content {
    std::size_t clients = 0, jobs = 0, documents = 0;
    std::string last; // The number issued last.
    std::string failure;
};

namespace {

enum Column { nameColumn, clientsColumn, jobsColumn, documentsColumn, lastColumn, columns };

} // namespace

BackupsWindow::BackupsWindow(AppModel& model, QWidget* parent)
    : QDialog(parent)
    , m_model(model)
    , m_list(new QTreeWidget(this))
    , m_explanation(makeSentence({}, this, TextStyle::body, Ink::muted))
    , m_question(makeSentence({}, this))
    , m_restore(makeButton(tr("Restore…"), ButtonKind::plain, this))
    , m_close(makeButton(tr("Close"), ButtonKind::plain, this))
{
    setObjectName(QStringLiteral("backups"));
    setWindowTitle(tr("Backups"));
    setAttribute(Qt::WA_DeleteOnClose);
    m_explanation->setText(
        tr("A copy for each day, and those that you made yourself. Restoring one puts it in the "
           "place of your library, of which a copy is made first."));
    m_list->setObjectName(QStringLiteral("backupList"));
    m_list->setAccessibleName(tr("Backups"));
    m_list->setHeaderLabels({ tr("Copy"), tr("Clients"), tr("Jobs"), tr("Documents"), tr("Last number") });
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->header()->setStretchLastSection(false);
    m_list->header()->setSectionResizeMode(nameColumn, QHeaderView::Stretch);
    for (int column = clientsColumn; column < columns; ++column)
        m_list->header()->setSectionResizeMode(column, QHeaderView::ResizeToContents);
    m_question->hide();
    m_restore->setObjectName(QStringLiteral("restore"));
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_restore);
    buttons->addStretch();
    buttons->addWidget(m_close);
    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(Space::group, Space::group, Space::group, Space::large);
    box->setSpacing(Space::medium);
    box->addWidget(new Label(tr("Backups"), this, TextStyle::title));
    box->addWidget(m_explanation);
    box->addWidget(m_list, 1);
    box->addWidget(m_question);
    box->addLayout(buttons);
    connect(m_list, &QTreeWidget::itemSelectionChanged, this, [this] {
        m_isAsking = false;
        refreshButton();
    });
    connect(m_restore, &QPushButton::clicked, this, &BackupsWindow::restore);
    connect(m_close, &QPushButton::clicked, this, &QDialog::close);
    connect(&model, &AppModel::stateChanged, this, &BackupsWindow::list);
    list();
    resize(Theme::of(this).scaled(680), Theme::of(this).scaled(440));
}

void BackupsWindow::list()
{
    m_run = std::make_shared<int>();
    m_list->clear();
    m_files = m_model.backups();
    for (const auto& file : m_files) {
        auto* item = new QTreeWidgetItem(m_list);
        item->setText(nameColumn, qt(file.stem().string()));
        for (int column = clientsColumn; column < lastColumn; ++column)
            item->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
        item->setText(lastColumn, tr("Reading…"));
    }
    if (m_files.empty()) {
        auto* item = new QTreeWidgetItem(m_list, { tr("There is no copy yet.") });
        item->setFlags(Qt::NoItemFlags);
    }
    refreshButton();
    readNext(0);
}

void BackupsWindow::readNext(std::size_t place)
{
    if (place >= m_files.size())
        return;
    const auto content = std::make_shared<Content>();
    m_model.inBackground(
        [content, file = m_files[place], moment = m_model.moment()] {
            try {
                const auto library = LibraryStore::decode(Base::readFile(file).bytes, moment);
                content->clients = library.clients.size();
                content->jobs = library.jobs.size();
                std::optional<Base::Instant> latest;
                for (const auto& invoice : library.invoices) {
                    content->documents += invoice.isIssued();
                    if (!invoice.isIssued() || !invoice.number || invoice.issueDate < latest)
                        continue;
                    latest = invoice.issueDate;
                    content->last = *invoice.number;
                }
            } catch (const std::exception&) {
                content->failure = "can’t be read";
            }
        },
        [this, content, place, run = std::weak_ptr(m_run)] {
            if (run.expired()) // The window is gone, or lists anew.
                return;
            auto* item = m_list->topLevelItem(static_cast<int>(place));
            const auto& formats = m_model.formats();
            if (content->failure.empty()) {
                item->setText(clientsColumn, qt(formats.count(static_cast<std::int64_t>(content->clients))));
                item->setText(jobsColumn, qt(formats.count(static_cast<std::int64_t>(content->jobs))));
                item->setText(
                    documentsColumn, qt(formats.count(static_cast<std::int64_t>(content->documents))));
            }
            item->setText(lastColumn,
                !content->failure.empty()   ? qt(content->failure)
                    : content->last.empty() ? tr("none")
                                            : qt(content->last));
            item->setData(nameColumn, Qt::UserRole, content->failure.empty());
            refreshButton();
            readNext(place + 1);
        });
}

void BackupsWindow::refreshButton()
{
    const auto* const item = m_list->currentItem();
    const bool isReadable = item && item->isSelected() && item->data(nameColumn, Qt::UserRole).toBool();
    const auto reason = m_model.readOnly();
    const bool mayRestore = m_model.canEdit() || reason == ReadOnlyReason::missingFile;
    m_restore->setEnabled(isReadable && mayRestore);
    m_restore->setToolTip(mayRestore ? QString() : qt(m_model.readOnlyText()));
    m_restore->setText(m_isAsking ? tr("Restore This Copy") : tr("Restore…"));
    setKind(m_restore, m_isAsking ? ButtonKind::primary : ButtonKind::plain);
    if (m_isAsking)
        m_question->setText(
            tr("“%1” takes the place of your library, of which a copy is kept here. Documents that "
               "were issued since stay in the folder “Invoices”.")
                .arg(item->text(nameColumn)));
    m_question->setVisible(m_isAsking);
}

// Asked about in the window itself.
void BackupsWindow::restore()
{
    if (!std::exchange(m_isAsking, !m_isAsking))
        return refreshButton();
    const auto file = m_files[static_cast<std::size_t>(m_list->indexOfTopLevelItem(m_list->currentItem()))];
    m_model.restoreBackup(file);
    close();
}

} // namespace Pallisande
