#include "Pallisande/Shell/FilesQuestion.h"

#include "Pallisande/Model/DocumentCounts.h"
#include "Pallisande/Model/Imports.h"
#include "Pallisande/Model/JobSection.h"
#include "Pallisande/Screens/FileKinds.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Shell/ChoiceDialog.h"

#include <algorithm>

namespace Pallisande {

namespace {

namespace fs = std::filesystem;
using Files = std::vector<fs::path>;

bool mayBeReport(const fs::path& file) { return isReport(file) || isTextFile(file); }

fs::path libraryIn(const Files& files)
{
    if (files.size() != 1)
        return {};
    const auto folder = files.front().filename() == LibraryStore::documentName ? files.front().parent_path()
                                                                               : files.front();
    std::error_code error;
    return fs::is_regular_file(folder / LibraryStore::documentName, error) ? folder : fs::path();
}

std::vector<Choice> choicesFor(AppModel& model, const Files& files)
{
    std::vector<Choice> choices;
    if (const auto folder = libraryIn(files); !folder.empty())
        choices.push_back(
            { QStringLiteral("Open This Library"), [&model, folder] { model.moveLibrary(folder); } });
    if (!model.canEdit())
        return choices;
    const bool showsJobs = model.section() == AppSection::jobs || model.section() == AppSection::deadlines;
    const auto selected = model.selection(AppSection::jobs);
    const auto* const job = showsJobs && selected ? model.job(*selected) : nullptr;
    const bool areReports = std::all_of(files.begin(), files.end(), mayBeReport);
    if (areReports && job && !job->invoiceID)
        choices.push_back({ QStringLiteral("Attach to “%1” as an Analysis").arg(qt(jobTitle(*job))),
            [&model, files, id = job->id] { model.imports().read(id, files); } });
    if (areReports && files.size() == 1)
        choices.push_back({ QStringLiteral("New Job with This Analysis"),
            [&model, file = files.front()] { model.jobs().openNewJob(file.stem().string(), file); } });
    if (std::all_of(files.begin(), files.end(), isReport))
        return choices;
    const auto count = [&model, files](DocumentCounts::Purpose purpose, std::optional<Base::Uuid> id) {
        return [&model, files, purpose, id] { model.counts().count(files, purpose, id); };
    };
    choices.push_back(
        { QStringLiteral("Count for a New Job"), count(DocumentCounts::Purpose::newJob, std::nullopt) });
    if (job && !job->invoiceID) {
        choices.push_back({ QStringLiteral("Count for “%1”").arg(qt(jobTitle(*job))),
            count(DocumentCounts::Purpose::attach, job->id) });
        choices.push_back({ QStringLiteral("Count as the Translation of “%1”").arg(qt(jobTitle(*job))),
            count(DocumentCounts::Purpose::target, job->id) });
    }
    return choices;
}

} // namespace

void askAboutFiles(AppModel& model, Files files, QWidget* window)
{
    if (files.empty())
        return;
    const auto choices = choicesFor(model, files);
    if (choices.empty()) {
        model.requireEditing();
        return;
    }
    const auto question = files.size() == 1
        ? QStringLiteral("What shall be done with “%1”?").arg(qt(files.front().filename().string()))
        : QStringLiteral("What shall be done with these %1 items?").arg(files.size());
    askToChoose(question, choices, window);
}

} // namespace Pallisande
