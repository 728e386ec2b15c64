#pragma once

#include "Pallisande/Screens/Jobs/AnalysisView.h"

#include <map>

class QVBoxLayout;

namespace Pallisande {

class ComboBox;

// The analyses of a job, and how another one is added.
class AnalysesCard : public JobCard {
    Q_OBJECT

public:
    AnalysesCard(const ScreenServices& services, QWidget* parent);

    void refresh() override;
    void showMismatches(); // Opens those whose sums don't match, at the first of them.

private:
    AnalysisView* viewOf(const Base::Uuid& analysis);
    CountMetric metric() const;

    ComboBox* m_metric;
    Label* m_nothing;
    QVBoxLayout* m_list;
    std::map<Base::Uuid, AnalysisView*> m_views;
    Base::Uuid m_shown; // The job that the views are of.
    std::optional<RateUnit> m_unit; // That the switch begins with.
};

} // namespace Pallisande
