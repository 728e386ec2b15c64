#include "Pallisande/Screens/Jobs/JobDrops.h"

#include "Pallisande/Model/DocumentCounts.h"
#include "Pallisande/Model/Imports.h"
#include "Pallisande/Screens/FileKinds.h"
#include "Pallisande/Screens/Text.h"

#include <QCursor>
#include <QMenu>

#include <algorithm>

namespace Pallisande::JobDrops {

namespace {

namespace fs = std::filesystem;

enum class Kind { nothing, reports, documents };

Kind kindOf(const Paths& files)
{
    if (files.empty())
        return Kind::nothing;
    if (std::all_of(files.begin(), files.end(), isCountable))
        return Kind::documents;
    if (files.size() == 1 || std::all_of(files.begin(), files.end(), isReport))
        return Kind::reports;
    return Kind::nothing;
}

} // namespace

bool takes(AppModel& model, const Paths& files, std::optional<Base::Uuid> id)
{
    const auto kind = kindOf(files);
    if (kind == Kind::nothing || !model.canEdit() || model.sheet())
        return false;
    if (!id)
        return kind == Kind::documents || files.size() == 1; // One new job.
    const auto* const job = model.job(*id);
    return job && !model.jobs().lockText(*job);
}

QString invitation(AppModel& model, const Paths& files, const Base::Uuid& id)
{
    const auto* const job = model.job(id);
    const auto name = qt(job ? jobTitle(*job) : std::string());
    if (kindOf(files) == Kind::documents)
        return files.size() == 1
            ? QStringLiteral("Drop to count a document for “%1”.").arg(name)
            : QStringLiteral("Drop to count %1 items for “%2”.").arg(files.size()).arg(name);
    return QStringLiteral("Drop to attach an analysis to “%1”.").arg(name);
}

void drop(AppModel& model, QWidget* over, const Paths& files, std::optional<Base::Uuid> id)
{
    if (!takes(model, files, id))
        return;
    using Purpose = DocumentCounts::Purpose;
    const bool areDocuments = kindOf(files) == Kind::documents;
    if (!id && areDocuments)
        return model.counts().count(files, Purpose::newJob);
    if (!id)
        return model.jobs().openNewJob(files.front().stem().string(), files.front());
    if (!areDocuments)
        return model.imports().read(*id, files);
    auto* menu = new QMenu(over);
    menu->setObjectName(QStringLiteral("dropMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(QStringLiteral("Count and Attach…"), over,
        [&model, files, id] { model.counts().count(files, Purpose::attach, id); });
    menu->addAction(QStringLiteral("Count as the Translation"), over,
        [&model, files, id] { model.counts().count(files, Purpose::target, id); });
    std::error_code error;
    if (files.size() == 1 && !fs::is_directory(files.front(), error)) {
        menu->addSeparator();
        menu->addAction(QStringLiteral("Import as an Analysis"), over,
            [&model, files, id] { model.imports().read(*id, files); });
    }
    menu->popup(QCursor::pos());
}

} // namespace Pallisande::JobDrops
