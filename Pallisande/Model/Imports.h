#pragma once

#include "Base/Decimal.h"
#include "PallisandeKit/Analyses/ImportResult.h"

#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Pallisande {

class AppModel;

// A report that was read and waits for the user's word.
struct PendingImport {
    Base::Uuid id;
    Base::Uuid jobID; // The job that the analysis will be attached to.
    std::string fileName;
    std::optional<std::string> data; // The report's bytes, of which a copy is stored.
    ImportResult result;
    std::size_t number = 1, count = 1; // “Report 1 of 3”
    std::optional<Base::Uuid> replaces; // An analysis that is mapped again.
    bool isThereAlready = false; // By its name or its bytes: replacing is the likelier wish.
    std::optional<NeedsMapping> mapped; // What the user was asked, and the answer in the place of the guess.
    std::size_t readings = 0; // How often its table was taken apart otherwise.
};

// Reports of CAT tools on their way to a job. Files are read and understood off the main thread; several are
// reviewed one after the other.
class Imports {
public:
    explicit Imports(AppModel& model)
        : m_model(model)
    {
    }

    void choose(const Base::Uuid& jobID); // Asks for a file.
    void read(const Base::Uuid& jobID, const std::vector<std::filesystem::path>& files);
    bool isReading() const { return m_isReading; }

    const std::optional<PendingImport>& pending() const { return m_pending; }
    // What a table's columns hold; a table that can't be read so stays to be mapped.
    void map(const ColumnMapping& mapping);
    void mapOtherwise(); // Back from the analysis to the columns.
    // Takes the table apart by another delimiter or headings; the guess is made anew. Where that finds no
    // table, all stays as it was.
    void readTableAs(const TableReading& reading);
    // What a mapping would give, worked out off the main thread. Only the last question is answered.
    struct Preview {
        std::vector<MappedLabel> labels; // Of the label column, those not spoken of yet with a guess.
        std::size_t files = 0;
        BandCounts totals;
        std::string refusal;
    };
    void preview(const ColumnMapping& mapping, std::function<void(const Preview&)> answer);
    void chooseAnother(); // In the place of a report that couldn't be read.
    // What the job would cost, before tax, with the report.
    std::optional<Base::Decimal> priceWith(bool replacesOthers) const;
    bool accept(bool replacesOthers);
    void discard(); // This one; the next is reviewed.
    // Maps a report again, from its stored copy.
    void mapAgain(const Base::Uuid& jobID, const Base::Uuid& analysisID);

private:
    struct Reading;

    void readNext();
    void wasRead(const std::shared_ptr<Reading>& reading);
    void review(PendingImport pending);

    AppModel& m_model;
    std::optional<PendingImport> m_pending;
    Base::Uuid m_jobID;
    std::deque<std::filesystem::path> m_waiting;
    std::size_t m_number = 0, m_count = 0;
    bool m_isReading = false;
    std::size_t m_previews = 0;
};

} // namespace Pallisande
