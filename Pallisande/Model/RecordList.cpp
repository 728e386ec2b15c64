#include "Pallisande/Model/RecordList.h"

#include <algorithm>

namespace Pallisande {

const std::vector<Base::Uuid>& RecordList::ids() const
{
    if (!m_isCurrent) {
        m_ids = m_make(m_kept);
        m_shown = { m_ids.begin(), m_ids.end() };
        m_isCurrent = true;
    }
    return m_ids;
}

bool RecordList::shows(const Base::Uuid& id) const
{
    ids();
    return m_shown.contains(id);
}

std::size_t RecordList::place(const Base::Uuid& id) const
{
    const auto& list = ids();
    return static_cast<std::size_t>(std::find(list.begin(), list.end(), id) - list.begin());
}

// Asked after the change, so it goes by what was shown before it: a list that nobody looked at keeps nothing.
void RecordList::keep(const Base::Uuid& id)
{
    if (m_shown.contains(id))
        m_kept.insert(id);
}

bool RecordList::letGo()
{
    if (m_kept.empty())
        return false;
    m_kept.clear();
    m_isCurrent = false;
    return true;
}

} // namespace Pallisande
