#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace Tamberlin {

// A piece of UTF-8 text: a string of its own, or, where a document stores its text as it is read, the place
// where it stands there. Those of a long text file needn't be copied so.
class SegmentText {
public:
    SegmentText() = default;
    SegmentText(std::string text)
        : m_own(std::move(text))
    {
    }
    SegmentText(const char* text)
        : m_own(text)
    {
    }

    // Text that stays where it is for as long as this is used.
    static SegmentText standing(std::string_view text)
    {
        SegmentText standing;
        standing.m_standing = text;
        return standing;
    }

    std::string_view view() const { return isStanding() ? m_standing : m_own; }
    operator std::string_view() const { return view(); }
    bool isStanding() const { return m_standing.data() != nullptr; }
    bool empty() const { return view().empty(); }

    SegmentText& operator+=(std::string_view text)
    {
        if (isStanding())
            m_own = std::exchange(m_standing, {});
        m_own += text;
        return *this;
    }

    friend bool operator==(const SegmentText& left, const SegmentText& right)
    {
        return left.view() == right.view();
    }

private:
    std::string m_own;
    std::string_view m_standing;
};

} // namespace Tamberlin
