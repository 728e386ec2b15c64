#pragma once

#include "Pallisande/Screens/Jobs/JobCard.h"

#include <optional>

class QCheckBox;

namespace Pallisande {

class BandBar;
class CountEdit;
class FiguresTable;
class FormLayout;
class Label;
class NoteList;

// The price of a job and everything that makes it: the counts by band, the sum in the order in which it is
// worked out, and what is doubtful about it.
class PriceCard : public JobCard {
    Q_OBJECT

public:
    PriceCard(const ScreenServices& services, QWidget* parent);

    void refresh() override;

signals:
    void mismatchesWanted(); // «Show the Report’s Totals»

protected:
    void revert() override;
    void changeEvent(QEvent* event) override;

private:
    void dress();
    void showBands(const JobPrice& price, const Client& client, bool isPast);
    void showSums(const JobPrice& price, bool isPast);
    bool showHead(const JobPrice& price); // True: it was billed, and at another price than this.
    void showProblems(const JobPrice& price);
    void showTarget(const JobPrice& price);

    Label *m_billed, *m_amount, *m_beforeTax, *m_units, *m_present, *m_floor, *m_caption;
    QCheckBox* m_hidesEmpty;
    QWidget* m_target; // The form of the target count.
    CountEdit* m_targetUnits;
    Label* m_targetLabel = nullptr;
    BandBar* m_bar;
    FiguresTable *m_bands, *m_sums;
    NoteList* m_problems;
    std::vector<MatchBand> m_rowBands; // Of the rows of the grid.
};

} // namespace Pallisande
