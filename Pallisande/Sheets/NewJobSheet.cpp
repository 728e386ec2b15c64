#include "Pallisande/Sheets/JobForm.h"
#include "Pallisande/Sheets/SheetMemory.h"
#include "Pallisande/Sheets/Sheets.h"

#include "Pallisande/Model/ClientSection.h"
#include "Pallisande/Model/JobSection.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/LineField.h"

namespace Pallisande {

namespace {

struct KeptJob {
    NewJob entries;
    std::string proposedTitle; // That it was opened with.
};

} // namespace

SheetDialog* makeSheet(AppModel& model, const NewJobSheet& sheet, QWidget* window)
{
    const auto sentence = sheet.report
        ? QStringLiteral("“%1” is read and shown for review once the job is there.")
              .arg(qt(sheet.report->filename().string()))
        : QString();
    auto* dialog = new SheetDialog(QStringLiteral("New Job"), sentence, SheetDialog::Width::small, window);
    dialog->setObjectName(QStringLiteral("newJobSheet"));
    auto* form = new JobForm(model, dialog);
    dialog->content()->addWidget(form);
    dialog->setFirstField(form->firstField());

    auto& memory = SheetMemory::of(model);
    auto entries = model.jobs().proposal();
    entries.title = sheet.title;
    if (const auto* const kept = memory.find<KeptJob>({})) {
        entries = kept->entries;
        if (sheet.title != kept->proposedTitle) // It is for another report.
            entries.title = sheet.title;
    }
    form->setEntries(entries);

    auto* add = dialog->setDefault(QStringLiteral("Add Job"), [&model, &memory, form] {
        if (!form->commit())
            return QStringLiteral("Mend what is marked above first.");
        if (model.jobs().add(form->entries())) {
            memory.forget<KeptJob>({});
            return QString();
        }
        return model.problem() ? qt(model.problem()->text) : QStringLiteral("The job couldn’t be added.");
    });
    add->setEnabled(!form->entries().clientID.isNil());
    QObject::connect(
        form, &JobForm::changed, add, [add, form] { add->setEnabled(!form->entries().clientID.isNil()); });
    QObject::connect(form, &JobForm::newClientWanted, dialog, [&model, dialog] {
        dialog->reject();
        model.clients().add();
    });
    QObject::connect(dialog, &QDialog::rejected, form, [&model, &memory, form, title = sheet.title] {
        memory.keep(Base::Uuid {}, KeptJob { form->entries(), title });
        if (model.sheet() && std::holds_alternative<NewJobSheet>(*model.sheet()))
            model.closeSheet();
    });
    return dialog;
}

} // namespace Pallisande
