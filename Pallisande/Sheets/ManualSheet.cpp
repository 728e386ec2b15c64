#include "Pallisande/Sheets/CountGrid.h"
#include "Pallisande/Sheets/SheetMemory.h"
#include "Pallisande/Sheets/Sheets.h"

#include "Pallisande/Model/JobSection.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/FormLayout.h"
#include "Pallisande/Widgets/LineField.h"

#include <QKeyEvent>

namespace Pallisande {

namespace {

struct KeptCounts {
    QString name;
    BandCounts counts;
};

const Analysis* typedBefore(AppModel& model, const ManualSheet& sheet)
{
    const auto* const job = model.job(sheet.jobID);
    for (std::size_t at = 0; job && sheet.analysisID && at < job->analyses.size(); ++at) {
        if (job->analyses[at].id == *sheet.analysisID)
            return &job->analyses[at];
    }
    return nullptr;
}

// The name's Return goes on to the counts; it doesn't attach anything yet.
class NameField : public TextField {
public:
    using TextField::TextField;
    QWidget* next = nullptr;

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
        if (isReturn && !(event->modifiers() & ~Qt::KeypadModifier) && commit())
            next->setFocus(Qt::TabFocusReason);
        else
            TextField::keyPressEvent(event);
    }
};

class ManualDialog : public SheetDialog {
public:
    ManualDialog(AppModel& model, const ManualSheet& sheet, QWidget* window)
        : SheetDialog(QStringLiteral("Type Counts In"),
            QStringLiteral(
                "The counts of each band, as the client or the tool gave them. One or three columns "
                "can be pasted from a spreadsheet."),
            Width::medium, window)
        , m_model(model)
        , m_sheet(sheet)
        , m_name(new NameField(this))
        , m_price(makeSentence({}, this))
    {
        const auto* const job = model.job(sheet.jobID);
        const auto* const client = job ? model.client(job->clientID) : nullptr;
        setObjectName(QStringLiteral("manualSheet"));
        m_grid = new CountGrid(model.formats(), client ? client->unit : RateUnit::word, this);
        m_name->setObjectName(QStringLiteral("countsName"));
        m_name->setValue(qt(label(AnalysisSource::manual)));
        m_name->next = m_grid->firstCell();
        m_price->setObjectName(QStringLiteral("countsPrice"));
        m_price->setAlignment(Qt::AlignRight);
        auto* form = new FormLayout(this);
        form->addRow(QStringLiteral("Name"), m_name, FormLayout::Width::stretching);
        content()->addWidget(form);
        content()->addSpacing(Space::small);
        content()->addWidget(m_grid);
        content()->addWidget(m_price);
        setFirstField(m_grid->firstCell());

        const auto* const before = typedBefore(model, sheet);
        if (before) {
            m_name->setValue(qt(before->name));
            m_grid->setCounts(before->totals());
        }
        if (const auto* const kept = memory().find<KeptCounts>(record())) {
            m_name->setValue(kept->name);
            m_grid->setCounts(kept->counts);
        }
        m_attach = setDefault(
            before ? QStringLiteral("Change Counts") : QStringLiteral("Attach"), [this] { return attach(); });
        connect(m_grid, &CountGrid::changed, this, &ManualDialog::refresh);
        connect(m_grid, &CountGrid::problemChanged, this, &SheetDialog::showError);
        connect(this, &QDialog::rejected, this, [this] {
            memory().keep(record(), KeptCounts { m_name->value(), m_grid->counts() });
            if (m_model.sheet() && std::holds_alternative<ManualSheet>(*m_model.sheet()))
                m_model.closeSheet();
        });
        refresh();
    }

private:
    SheetMemory& memory() const { return SheetMemory::of(m_model); }
    Base::Uuid record() const { return m_sheet.analysisID.value_or(m_sheet.jobID); }

    QString attach()
    {
        if (!m_grid->commit() || !m_name->commit())
            return QStringLiteral("Counts are whole numbers.");
        if (m_model.jobs().typeCounts(
                m_sheet.jobID, plain(m_name->value()), m_grid->counts(), m_sheet.analysisID)) {
            memory().forget<KeptCounts>(record());
            return {};
        }
        return m_model.problem() ? qt(m_model.problem()->text)
                                 : QStringLiteral("The counts couldn’t be attached.");
    }

    void refresh()
    {
        const auto counts = m_grid->counts();
        m_attach->setEnabled(sum(counts.words) > 0 || sum(counts.segments) > 0 || sum(counts.characters) > 0);
        const auto* const job = m_model.job(m_sheet.jobID);
        const auto* const client = job ? m_model.client(job->clientID) : nullptr;
        const auto then = m_model.jobs().priceWith(m_sheet.jobID, counts, m_sheet.analysisID);
        if (!client || !then)
            return m_price->clear();
        const auto now = m_model.jobs().price(*job);
        m_price->setText(
            QStringLiteral("Price: now %1 → %2 before tax")
                .arg(qt(m_model.formats().amount(now.subtotal + now.minimumAdjustment, client->currency)),
                    qt(m_model.formats().money(*then, client->currency))));
    }

    AppModel& m_model;
    ManualSheet m_sheet;
    NameField* m_name;
    CountGrid* m_grid;
    Label* m_price;
    QPushButton* m_attach;
};

} // namespace

SheetDialog* makeSheet(AppModel& model, const ManualSheet& sheet, QWidget* window)
{
    return new ManualDialog(model, sheet, window);
}

} // namespace Pallisande
