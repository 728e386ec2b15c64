#pragma once

#include "Pallisande/Screens/Clients/ClientCard.h"

class QCheckBox;
class QPushButton;

namespace Pallisande {

class DecimalEdit;
class PriceStrip;
class ShareBar;

// The share of the rate that each band is billed at. A weight that makes no sense is kept and said, as the
// price is still made with it.
class WeightsCard : public ClientCard {
    Q_OBJECT

public:
    WeightsCard(AppModel& model, QWidget* parent);

    // Of the first weight that makes no sense, or of all.
    QWidget* fieldToMend() const;

protected:
    void refresh(const Client& client) override;

private:
    struct Row {
        DecimalEdit* percent = nullptr;
        ShareBar* bar = nullptr;
        FieldNote* note = nullptr;
    };

    void addRow(FormLayout& form, MatchBand band);
    void addFloor();
    void showNote(MatchBand band);

    QPushButton* m_presets;
    Label* m_same;
    Label* m_raised; // «billed at 100%»
    BandMap<Row> m_rows;
    QCheckBox* m_floor; // Its text stands beside it, as it may need two lines.
    PriceStrip* m_strip;
    std::optional<MatchBand> m_invalid;
};

} // namespace Pallisande
