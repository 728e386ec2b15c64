#include "PallisandeKit/Library/IssueLog.h"

#include "Base/DurableFile.h"
#include "Base/Json.h"
#include "Base/Sha256.h"

#include <algorithm>

namespace Pallisande {

IssueLog::IssueLog(const Base::Folder& folder, const Base::Moment& moment)
{
    const std::string name(fileName);
    if (!Base::fileIdentity(folder, name))
        return;
    const auto file = Base::readFile(folder, name);
    const std::string_view text(file.bytes);
    const Base::ReadingContext context { moment.now, moment.calendar.zone() };
    for (std::size_t at = 0; at < text.size();) {
        const auto end = text.find('\n', at);
        if (end == std::string_view::npos) {
            m_hasTornEnd = true;
            break;
        }
        const auto line = text.substr(at, end - at);
        at = end + 1;
        m_wholeBytes = static_cast<std::int64_t>(at);
        try {
            const auto record = Base::fromJson<IssueLogLine>(line, context);
            m_isIntact = m_isIntact && record.previous == m_lastHash;
            take(record);
        } catch (const Base::DecodingError&) {
            m_isIntact = false; // The lines around it still count.
        }
        m_lastHash = Base::sha256(line);
    }
}

void IssueLog::take(const IssueLogLine& line)
{
    if (line.issuing)
        m_entries.push_back({ *line.issuing, line.pdfSHA256.value_or(""), Outcome::pending });
    const auto settle = [&](const std::optional<Base::Uuid>& id, Outcome outcome) {
        if (!id)
            return;
        const auto entry = std::find_if(m_entries.rbegin(), m_entries.rend(),
            [&](const Entry& candidate) { return candidate.plan.document.id == *id; });
        if (entry != m_entries.rend())
            entry->outcome = outcome;
    };
    settle(line.done, Outcome::done);
    settle(line.dropped, Outcome::dropped);
}

void IssueLog::append(const Base::Folder& folder, IssueLogLine line)
{
    const std::string name(fileName);
    if (m_hasTornEnd) {
        Base::truncateDurably(folder, name, m_wholeBytes);
        m_hasTornEnd = false;
    }
    line.previous = m_lastHash;
    const auto text = Base::toJson(line, Base::JsonStyle::compact);
    m_hasTornEnd = true; // Until it is known that the whole line is there.
    Base::appendDurably(folder, name, text + "\n");
    m_hasTornEnd = false;
    m_wholeBytes += static_cast<std::int64_t>(text.size()) + 1;
    m_lastHash = Base::sha256(text);
    take(line);
}

void IssueLog::begin(const Base::Folder& folder, const Ledger::IssuePlan& plan, const std::string& pdfSHA256)
{
    append(folder, { .issuing = plan, .pdfSHA256 = pdfSHA256 });
}

void IssueLog::finish(const Base::Folder& folder, const Base::Uuid& document, Outcome outcome)
{
    IssueLogLine line;
    (outcome == Outcome::done ? line.done : line.dropped) = document;
    append(folder, line);
}

} // namespace Pallisande
