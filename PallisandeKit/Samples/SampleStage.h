#pragma once

#include "PallisandeKit/Ledger/Ledger.h"
#include "PallisandeKit/Samples/SampleLibrary.h"

#include <functional>
#include <optional>
#include <utility>

namespace Pallisande::Sample {

// Where the sample library is made: in memory, or in a folder. Its clock is set as the story goes on.
class Stage {
public:
    explicit Stage(const Base::Moment& moment)
        : today(moment)
        , clock(moment)
    {
    }
    virtual ~Stage() = default;

    virtual const Library& library() const = 0;
    virtual void change(const std::function<void(Library&)>& operation) = 0;
    virtual void attach(
        const Base::Uuid& job, const Analysis& analysis, const std::string& report, const std::string& file)
        = 0;
    virtual void issue(const Base::Uuid& draft) = 0;

    const Base::Moment today;
    Base::Moment clock;
};

class MemoryStage final : public Stage {
public:
    using Stage::Stage;

    const Library& library() const override { return made; }
    void change(const std::function<void(Library&)>& operation) override { operation(made); }
    void attach(
        const Base::Uuid& job, const Analysis& analysis, const std::string&, const std::string&) override
    {
        Ledger::attachAnalysis(made, job, analysis, clock.now);
    }
    void issue(const Base::Uuid& draft) override
    {
        Ledger::carryOut(made, Ledger::planIssue(made, draft, std::nullopt, clock));
    }

    Library made = Library::makeNew();
};

class FolderStage final : public Stage {
public:
    FolderStage(const std::filesystem::path& folder, SessionServices services)
        : Stage({ services.now(), services.calendar })
        , m_renderer(services.renderer ? std::optional<SampleRenderer>(*services.renderer) : std::nullopt)
        , m_session(open(folder, std::move(services)))
    {
    }

    LibrarySession& session() { return m_session; }
    const Library& library() const override { return m_session.library(); }
    void change(const std::function<void(Library&)>& operation) override { m_session.change(operation); }
    void attach(const Base::Uuid& job, const Analysis& analysis, const std::string& report,
        const std::string& file) override
    {
        m_session.attachAnalysis(job, analysis, report, file);
    }
    void issue(const Base::Uuid& draft) override { m_session.issue(draft); }

private:
    LibrarySession open(const std::filesystem::path& folder, SessionServices services)
    {
        services.now = [this] { return clock.now; };
        services.renderer = m_renderer ? &*m_renderer : nullptr;
        return LibrarySession::open(folder, LibrarySession::Access::writing, std::move(services));
    }

    std::optional<SampleRenderer> m_renderer;
    LibrarySession m_session;
};

} // namespace Pallisande::Sample
