#pragma once

#include "Pallisande/Screens/DetailPage.h"
#include "Pallisande/Screens/Jobs/JobCard.h"

namespace Pallisande {

class AnalysesCard;
class ExtraLinesCard;

// The page of one job: its header and cards, below a strip that tells of several selected ones. Files can be
// dropped anywhere on it.
class JobDetail : public DetailPage {
    Q_OBJECT

public:
    JobDetail(const ScreenServices& services, QWidget* parent);

    void showJob(const Base::Uuid& id);
    void addExtraLine();
    void focusImport();

protected:
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    bool isConcerned(const LibraryChanges& changes) const;
    void refresh(); // At once, or when it is next seen.
    void showStrip();

    ScreenServices m_services;
    Base::Uuid m_id;
    Card* m_strip;
    class Label* m_selected;
    AnalysesCard* m_analyses;
    ExtraLinesCard* m_extras;
    std::vector<JobPart*> m_parts;
    class DropSign* m_dropSign;
    bool m_isOutdated = false;
};

} // namespace Pallisande
