#include "Pallisande/Model/Messages.h"

namespace Pallisande {

void Messages::remember(const std::string& text, bool isProblem, Base::Instant now)
{
    m_past.push_back({ now, text, isProblem });
    if (m_past.size() > mostKept)
        m_past.pop_front();
}

void Messages::tell(Problem problem, Base::Instant now)
{
    remember(problem.text, true, now);
    m_problem = std::move(problem);
}

void Messages::tell(Notice notice, Base::Instant now)
{
    remember(notice.text, false, now);
    m_notice = std::move(notice);
}

void Messages::tellLater(Problem problem, Base::Instant now)
{
    if (!m_problem)
        return tell(std::move(problem), now);
    remember(problem.text, true, now);
    m_waiting.push_back(std::move(problem));
}

void Messages::dismissProblem()
{
    m_problem.reset();
    if (m_waiting.empty())
        return;
    m_problem = std::move(m_waiting.front());
    m_waiting.pop_front();
}

} // namespace Pallisande
