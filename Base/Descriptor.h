#pragma once

#include <cerrno>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace Base {

// A file descriptor that closes itself.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int number)
        : m_number(number)
    {
    }
    Descriptor(Descriptor&& other) noexcept
        : m_number(other.release())
    {
    }
    Descriptor& operator=(Descriptor other) noexcept
    {
        std::swap(m_number, other.m_number);
        return *this;
    }
    ~Descriptor()
    {
        if (isOpen())
            ::close(m_number);
    }

    bool isOpen() const { return m_number >= 0; }
    int number() const { return m_number; }
    int release() { return std::exchange(m_number, -1); }

private:
    int m_number = -1;
};

// The reason alone ("No space left on device"): with a text of its own, std::system_error would put it in
// front.
[[noreturn]] inline void throwSystemError(int error)
{
    throw std::system_error(error, std::generic_category());
}

// What a system call gives, made again for as long as signals interrupt it.
template <typename Call> auto repeated(Call call)
{
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

// The same, and a failure is thrown.
template <typename Call> auto checked(Call call)
{
    const auto result = repeated(call);
    if (result < 0)
        throwSystemError(errno);
    return result;
}

} // namespace Base
