#pragma once

#include "Pallisande/Screens/Clients/ClientCard.h"

namespace Pallisande {

class CodeBox;
class ComboBox;
class DecimalEdit;
class PairRates;
class PriceStrip;

// In which currency and unit the client pays, and how much.
class RatesCard : public ClientCard {
    Q_OBJECT

public:
    RatesCard(AppModel& model, QWidget* parent);

protected:
    void refresh(const Client& client) override;

private:
    CodeBox* m_currency;
    ComboBox *m_unit, *m_basis;
    DecimalEdit *m_rate, *m_minimum;
    Label *m_drafts, *m_per;
    PairRates* m_pairs;
    PriceStrip* m_strip;
};

} // namespace Pallisande
