#include "Pallisande/Shell/FileChooser.h"

#include "Pallisande/Screens/Text.h"
#include "Pallisande/Shell/ChoiceDialog.h"

#include <QFileDialog>

namespace Pallisande {

namespace {

using Chosen = std::function<void(AppServices::Paths)>;

QFileDialog* makeDialog(const ChooserRequest& request, const Chosen& chosen, QWidget* window)
{
    auto* dialog = new QFileDialog(window, qt(request.message));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(Qt::WindowModal);
    if (!request.prompt.empty())
        dialog->setLabelText(QFileDialog::Accept, qt(request.prompt));
    QObject::connect(dialog, &QFileDialog::finished, dialog, [dialog, chosen](int result) {
        AppServices::Paths paths;
        if (result == QDialog::Accepted) {
            for (const auto& file : dialog->selectedFiles())
                paths.emplace_back(plain(file));
        }
        chosen(paths);
    });
    return dialog;
}

void ask(const ChooserRequest& request, QFileDialog::FileMode mode, const Chosen& chosen, QWidget* window)
{
    auto* dialog = makeDialog(request, chosen, window);
    dialog->setFileMode(mode);
    if (mode == QFileDialog::Directory)
        dialog->setOption(QFileDialog::ShowDirsOnly);
    if (request.kind == ChooserRequest::Kind::image)
        dialog->setNameFilter(QStringLiteral("PNG and JPEG images (*.png *.jpg *.jpeg)"));
    if (request.kind == ChooserRequest::Kind::report)
        dialog->setNameFilters(
            { QStringLiteral("Analyses (*.xml *.csv *.tsv *.txt *.json)"), QStringLiteral("All files (*)") });
    if (request.kind == ChooserRequest::Kind::saveFile) {
        dialog->setAcceptMode(QFileDialog::AcceptSave);
        dialog->selectFile(qt(request.fileName));
    }
    dialog->open();
}

} // namespace

void chooseFiles(const ChooserRequest& request, const Chosen& chosen, QWidget* window)
{
    switch (request.kind) {
    case ChooserRequest::Kind::report:
    case ChooserRequest::Kind::image:
        return ask(request, QFileDialog::ExistingFile, chosen, window);
    case ChooserRequest::Kind::folder:
        return ask(request, QFileDialog::Directory, chosen, window);
    case ChooserRequest::Kind::saveFile:
        return ask(request, QFileDialog::AnyFile, chosen, window);
    case ChooserRequest::Kind::documents:
        askToChoose(qt(request.message),
            {
                { QStringLiteral("Add Files…"),
                    [=] { ask(request, QFileDialog::ExistingFiles, chosen, window); } },
                { QStringLiteral("Add Folder…"),
                    [=] { ask(request, QFileDialog::Directory, chosen, window); } },
            },
            window);
        return;
    }
}

} // namespace Pallisande
