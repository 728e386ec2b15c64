#pragma once

#include "Base/Uuid.h"
#include "Pallisande/Model/JobSection.h"
#include "TamberlinKit/Batch/CountBatch.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace Pallisande {

class AppModel;

// Documents that are counted for a job. They are read off the main thread, with progress, and can be given
// up.
class DocumentCounts {
public:
    enum class Purpose { newJob, attach, target }; // A new job, counts for a job, its translation's count.

    explicit DocumentCounts(AppModel& model);
    ~DocumentCounts(); // Gives up what is under way.

    void choose(Purpose purpose, std::optional<Base::Uuid> jobID = std::nullopt); // Asks for files.
    // Files and folders. The sheet `makeJob` opens when they are counted; a target count goes to its job.
    void count(const std::vector<std::filesystem::path>& paths, Purpose purpose,
        std::optional<Base::Uuid> jobID = std::nullopt);
    struct Progress {
        std::size_t done = 0, all = 0;
        std::string file; // The one that was finished last.
    };
    const std::optional<Progress>& progress() const { return m_progress; } // Only while counting.
    void cancel();

    struct Finished {
        Purpose purpose = Purpose::newJob;
        std::optional<Base::Uuid> jobID;
        std::vector<std::filesystem::path> paths; // Of the files that were counted, in their order.
        Tamberlin::BatchCount batch;
    };
    const std::optional<Finished>& finished() const { return m_finished; }
    // Only these of the files: counted again, since what repeats depends on what is left.
    void take(const std::vector<std::filesystem::path>& paths);
    std::optional<Base::Decimal> priceFor(const NewJob& job) const; // Before tax, on the rates of its client.
    std::optional<Base::Decimal> priceWith(const Base::Uuid& jobID) const; // Of a job, with the counts.
    BandCounts totals() const;
    bool isApproximate() const;

    bool makeJob(const NewJob& job); // From the sheet, with the counts attached.
    bool attach(const Base::Uuid& jobID);
    bool setTarget(const Base::Uuid& jobID);

private:
    struct Run;

    void start(std::vector<std::filesystem::path> paths, bool areChosen);
    void wasCounted(const std::shared_ptr<Run>& run);

    AppModel& m_model;
    std::optional<Progress> m_progress;
    std::shared_ptr<Run> m_run;
    std::optional<Finished> m_finished;
    Purpose m_purpose = Purpose::newJob;
    std::optional<Base::Uuid> m_jobID;
};

} // namespace Pallisande
