#pragma once

#include "Pallisande/Preview/PageDrawing.h"

#include <QWidget>

#include <memory>
#include <optional>
#include <string>

class QPushButton;
class QScrollArea;
class QStackedWidget;
class QTimer;
class QToolButton;

namespace Pallisande {

class AppModel;
class ComboBox;
class Label;
class PendingTask;

// One page of a document with its shadow: fitted, at 100% or at 200%. Drawing happens off the main thread;
// what is on show stays until the new page is there. While it is hidden nothing is drawn.
class PagePreview : public QWidget {
    Q_OBJECT

public:
    PagePreview(AppModel& model, QWidget* parent);
    ~PagePreview() override;

    // A document that may be changed on: drawn at once when it is another one (by `key`), and a quarter of a
    // second after the last change when it is the same. Drafts are marked in the margin.
    enum class Mark { none, draft };
    void showDocument(const std::string& key, Tamberlin::PrintedDocument document, Mark mark);
    void showStored(const std::filesystem::path& pdf);
    // A sentence in the place of the page, with at most one button.
    void showSentence(const QString& sentence, const QString& button = {});
    void clear();

    bool isDrawn() const { return m_isDrawn; } // The page on show is that of what was last asked for.
    const std::string& failure() const { return m_drawn.failure; }
    const std::string& missingCharacters() const { return m_drawn.missingCharacters; }
    int page() const { return m_drawn.page; }
    int pages() const { return m_drawn.pages; }
    void setPage(int page);
    int zoom() const { return m_zoom; }
    void setZoom(int percent); // 0: fit.
    QWidget* pane() const; // What takes the focus.

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    void drawn();
    void acted(); // The button beside the sentence.
    void zoomChanged();

protected:
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class Paper;

    void ask(); // For the page as it is wanted now.
    void take(const DrawnPage& drawn);
    void refresh();
    void stopWaiting();

    AppModel& m_model;
    QStackedWidget* m_stack;
    QScrollArea* m_scroll;
    Paper* m_paper;
    Label* m_sentence;
    QPushButton* m_act;
    QWidget* m_bar;
    QToolButton *m_previous, *m_next;
    Label* m_place;
    ComboBox* m_scale;
    QTimer* m_resized;

    PageSource m_source;
    std::string m_key;
    Mark m_mark = Mark::none;
    DrawnPage m_drawn;
    int m_wanted = 0, m_zoom = 0;
    bool m_isDrawn = false, m_isDrawing = false, m_isOutdated = false, m_isWaiting = false;
    std::unique_ptr<PendingTask> m_later;
};

} // namespace Pallisande
