#pragma once

#include "Pallisande/Screens/Clients/ClientCard.h"

class QGridLayout;
class QPushButton;
class QToolButton;

namespace Pallisande {

class DecimalEdit;

// The client's rates for language pairs: a row of fields each, of which the first that matches a job counts.
class PairRates : public QWidget {
    Q_OBJECT

public:
    PairRates(AppModel& model, ClientEdit edit, QWidget* parent);

    void show(const Client& client);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    struct Row {
        Base::Uuid id;
        TextField *source, *target;
        QWidget* arrow;
        DecimalEdit *rate, *minimum;
        QToolButton* remove;
        FieldNote* note;
        QString remark; // Another row has the same pair.
    };

    Row& addRow();
    void arrange(); // Each rate in one line, or in two where there isn’t room.
    void place(const Row& row, std::size_t at);
    void showRow(std::size_t at, const Client& client);
    void showNote(Row& row);
    void change(std::size_t at, QWidget* field, const std::function<void(ClientRate&, const Row&)>& how);
    void add();
    void remove(std::size_t at);

    AppModel& m_model;
    ClientEdit m_edit;
    QGridLayout* m_grid;
    std::vector<Label*> m_heads; // Source, target, rate, minimum fee.
    std::vector<std::unique_ptr<Row>> m_rows; // Those beyond the client's rates are hidden.
    std::size_t m_count = 0;
    bool m_isNarrow = false;
    QPushButton* m_add;
    Base::Uuid m_client;
};

} // namespace Pallisande
