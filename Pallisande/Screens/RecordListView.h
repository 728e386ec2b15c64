#pragma once

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Screens/Commands.h"

#include <QListView>

#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

namespace Pallisande {

// The list of a section: its rows are asked for when they are painted, the selection follows the model's and
// several rows may be selected. Letters jump by title; Return asks for the detail.
class RecordListView : public QListView {
    Q_OBJECT

public:
    using IDs = std::vector<Base::Uuid>;
    struct Source {
        AppSection section;
        std::function<const IDs&()> ids;
        // What RowDelegate paints, by its roles, and Qt::AccessibleTextRole.
        std::function<QVariant(const Base::Uuid& id, int role)> data;
        std::function<QString(const Base::Uuid& id)>
            asText; // A row for a spreadsheet, fields parted by tabs.
    };

    RecordListView(AppModel& model, Commands& commands, Source source, QWidget* parent);

    IDs selected() const; // In the order of the list.
    bool hasRows() const { return !m_source.ids().empty(); } // Also while it is hidden.
    // Of a row and of the empty area; nothing stands for a line.
    void setContextMenu(std::vector<std::optional<Command>> commands);
    // Files that are dropped: on a row, or beside all rows. What `takes` refuses shows the “no” cursor.
    struct Drops {
        std::function<bool(const std::vector<std::filesystem::path>&, std::optional<Base::Uuid>)> takes;
        std::function<void(const std::vector<std::filesystem::path>&, std::optional<Base::Uuid>)> drop;
    };
    void setDrops(Drops drops);
    // The file that goes along when a row is dragged out of the window; empty: only its text.
    void setDraggedFile(std::function<std::filesystem::path(const Base::Uuid&)> file);
    void selectFirst(); // If nothing is selected.
    QString textOf(const Base::Uuid& id) const { return m_source.asText(id); }

signals:
    void selectedChanged();
    void detailWanted();
    void countChanged(); // Whether there is a row at all.

protected:
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void startDrag(Qt::DropActions actions) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void outdate(); // Asks for the ids again: at once, or when it is next seen.
    void catchUp();
    void takeSelection(); // Of the model.
    void handSelection(); // To the model and the commands.
    void markDrop(std::optional<int> row, bool isBeside);
    std::optional<Base::Uuid> rowUnder(const QPoint& place) const;
    void dress();

    AppModel& m_model;
    Commands& m_commands;
    Source m_source;
    class RecordListModel* m_rows;
    std::vector<std::optional<Command>> m_menu;
    Drops m_drops;
    std::function<std::filesystem::path(const Base::Uuid&)> m_file;
    bool m_isOutdated = true, m_isUpdating = false, m_isHanding = false, m_isDropBeside = false;
};

// Local files of what is dragged over a widget; empty unless all are.
std::vector<std::filesystem::path> filesOf(const QMimeData* data);

} // namespace Pallisande
