#pragma once

#include <ctime>

namespace Test {

// The processor time of this program since then, which other programs don't lengthen: whether something takes
// linear time or hangs.
class Effort {
public:
    double seconds() const { return static_cast<double>(std::clock() - m_start) / CLOCKS_PER_SEC; }

private:
    std::clock_t m_start = std::clock();
};

} // namespace Test
