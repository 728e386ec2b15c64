#pragma once

#include "Pallisande/Model/AppModel.h"

#include <filesystem>
#include <optional>
#include <vector>

class QWidget;

namespace Pallisande {

// Files that are dropped on a job, or on the list beside all jobs. Reports of CAT tools are imported;
// documents are counted, for which there is a choice; a single file of another kind is taken for a report,
// whose refusal explains what to do.
namespace JobDrops {

using Paths = std::vector<std::filesystem::path>;

bool takes(AppModel& model, const Paths& files, std::optional<Base::Uuid> job);
void drop(AppModel& model, QWidget* over, const Paths& files, std::optional<Base::Uuid> job);
QString invitation(AppModel& model, const Paths& files, const Base::Uuid& job); // While they hover.

} // namespace JobDrops

} // namespace Pallisande
