#include "TamberlinKit/Batch/CountBatch.h"

#include "Base/Text.h"
#include "TamberlinKit/Counting/PreparedCount.h"
#include "TamberlinKit/Readers/ReadDocument.h"
#include "TamberlinKit/Text/ReadError.h"

#include <fmt/format.h>

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <thread>

namespace Tamberlin {

namespace {

namespace fs = std::filesystem;

// What became of one file on its way: its text and count, a failure, or a fault of ours.
struct Outcome {
    std::unique_ptr<const Extracted> file;
    std::unique_ptr<PreparedCount> count;
    std::optional<ReadFailure> failure;
    std::exception_ptr fault;
};

// Threads that prepare the files of a list ahead of the one that takes them in order, but only a few ahead.
// That one helps while the file that it wants isn't ready.
class Preparation {
public:
    Preparation(
        const std::vector<fs::path>& files, const BatchOptions& options, const std::stop_token& cancel)
        : m_files(files)
        , m_options(options)
        , m_outcomes(files.size())
        , m_forward(cancel, Stop { this })
    {
        const auto cores = std::max(1u, std::thread::hardware_concurrency());
        const auto wanted = options.threads > 0 ? options.threads : cores;
        const auto threads = std::min<std::size_t>(wanted, files.size());
        m_mostAhead = 2 * threads;
        m_threadsPerFile = threads > 0 ? wanted / static_cast<unsigned>(threads) : 1;
        for (std::size_t number = 1; number < threads; ++number) // The first is the caller's.
            m_threads.emplace_back([this] { work(); });
    }
    Preparation(const Preparation&) = delete;
    Preparation& operator=(const Preparation&) = delete;
    ~Preparation() { stop(); } // The threads are joined before anything else goes.

    Outcome take(std::size_t place)
    {
        std::unique_lock lock(m_mutex);
        m_taken = place;
        m_hasRoom.notify_one();
        while (!m_outcomes[place]) {
            if (m_stop.stop_requested())
                throw Cancelled();
            if (mayBegin())
                prepareNext(lock);
            else
                m_isReady.wait(lock);
        }
        if (m_stop.stop_requested())
            throw Cancelled();
        auto outcome = std::move(*m_outcomes[place]);
        m_outcomes[place].reset();
        return outcome;
    }

private:
    struct Stop {
        Preparation* preparation;
        void operator()() const { preparation->stop(); }
    };

    void stop()
    {
        m_stop.request_stop();
        const std::lock_guard lock(m_mutex);
        m_isReady.notify_all();
        m_hasRoom.notify_all();
    }

    bool mayBegin() const { return m_next < m_files.size() && m_next < m_taken + m_mostAhead; }

    void prepareNext(std::unique_lock<std::mutex>& lock)
    {
        const auto place = m_next++;
        lock.unlock();
        auto outcome = prepared(m_files[place]);
        lock.lock();
        m_outcomes[place] = std::move(outcome);
        if (place == m_taken)
            m_isReady.notify_one();
    }

    void work()
    {
        std::unique_lock lock(m_mutex);
        for (;;) {
            m_hasRoom.wait(
                lock, [&] { return m_stop.stop_requested() || m_next == m_files.size() || mayBegin(); });
            if (m_stop.stop_requested() || m_next == m_files.size())
                return;
            prepareNext(lock);
        }
    }

    Outcome prepared(const fs::path& path) const
    {
        Outcome outcome;
        const auto name = Base::validUtf8(path.filename().string());
        try {
            const PdfOptions pdf { .recognisesScans = m_options.counting.ocrScannedPDFs,
                .threads = m_threadsPerFile };
            outcome.file = std::make_unique<Extracted>(readDocument(path, m_stop.get_token(), pdf));
            outcome.count = std::make_unique<PreparedCount>(
                *outcome.file, m_options.counting, m_threadsPerFile, m_stop.get_token());
        } catch (const ReadError& error) {
            outcome.failure = ReadFailure { name, error.what() };
        } catch (const std::bad_alloc&) {
            outcome = {};
            outcome.failure
                = ReadFailure { name, fmt::format("“{}” needs more memory than there is.", name) };
        } catch (...) { // Cancelled, or a fault; the thread that counts throws it on.
            outcome.fault = std::current_exception();
        }
        return outcome;
    }

    const std::vector<fs::path>& m_files;
    const BatchOptions& m_options;
    std::size_t m_mostAhead = 0;
    unsigned m_threadsPerFile = 1; // Few long files are counted in pieces.
    std::mutex m_mutex;
    std::condition_variable m_isReady, m_hasRoom; // The file that is wanted; the list ahead of it.
    std::vector<std::optional<Outcome>> m_outcomes;
    std::size_t m_next = 0, m_taken = 0;
    std::stop_source m_stop;
    std::stop_callback<Stop> m_forward;
    std::vector<std::jthread> m_threads;
};

} // namespace

BatchCount countBatch(
    const std::vector<fs::path>& files, const BatchOptions& options, const std::stop_token& cancel)
{
    BatchCount result;
    SeenSentences seen;
    Preparation preparation(files, options, cancel);
    for (std::size_t place = 0; place < files.size(); ++place) {
        auto outcome = preparation.take(place);
        if (outcome.fault)
            std::rethrow_exception(outcome.fault);
        if (outcome.failure) {
            result.failures.push_back(std::move(*outcome.failure));
        } else {
            if (options.onRead)
                options.onRead(*outcome.file);
            using Following = PreparedCount::Following;
            result.files.push_back(outcome.count->finish(static_cast<std::int64_t>(result.files.size()), seen,
                place + 1 < files.size() ? Following::files : Following::none));
        }
        if (options.onProgress)
            options.onProgress(place + 1, files.size());
    }
    return result;
}

} // namespace Tamberlin
