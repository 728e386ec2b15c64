#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace Tamberlin {

// A piece of UTF-8 text: a string of its own, or, where a document stores its text as it is read, the place
// where it stands there. Those of a long text file needn't be copied so.
// There can be millions of them, most of which stand somewhere: those are kept small.
class SegmentText {
public:
    SegmentText() = default;
    SegmentText(std::string text)
        : m_own(std::make_unique<std::string>(std::move(text)))
    {
    }
    SegmentText(const char* text)
        : SegmentText(std::string(text))
    {
    }
    SegmentText(const SegmentText& other)
        : m_own(other.m_own ? std::make_unique<std::string>(*other.m_own) : nullptr)
        , m_standing(other.m_standing)
    {
    }
    SegmentText(SegmentText&&) noexcept = default;
    SegmentText& operator=(SegmentText other) noexcept
    {
        m_own = std::move(other.m_own);
        m_standing = other.m_standing;
        return *this;
    }
    ~SegmentText() = default;

    // Text that stays where it is for as long as this is used.
    static SegmentText standing(std::string_view text)
    {
        SegmentText standing;
        standing.m_standing = text;
        return standing;
    }

    std::string_view view() const { return m_own ? *m_own : m_standing; }
    operator std::string_view() const { return view(); }
    bool isStanding() const { return !m_own; }
    bool empty() const { return view().empty(); }

    SegmentText& operator+=(std::string_view text)
    {
        if (!m_own)
            m_own = std::make_unique<std::string>(std::exchange(m_standing, {}));
        *m_own += text;
        return *this;
    }

    friend bool operator==(const SegmentText& left, const SegmentText& right)
    {
        return left.view() == right.view();
    }

private:
    std::unique_ptr<std::string> m_own; // Or none, and then it stands there.
    std::string_view m_standing;
};

} // namespace Tamberlin
