#include "DocumentReader/Input.h"

#include "Base/Descriptor.h"

#include <sys/mman.h>
#include <sys/stat.h>

namespace Tamberlin {

std::string_view mappedInput()
{
    struct stat status { };
    Base::checked([&] { return ::fstat(STDIN_FILENO, &status); });
    const auto size = static_cast<std::size_t>(status.st_size);
    if (size == 0)
        return {};
    void* const bytes = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, STDIN_FILENO, 0);
    if (bytes == MAP_FAILED)
        Base::throwSystemError(errno);
    return { static_cast<const char*>(bytes), size };
}

void writeOutput(std::string_view bytes)
{
    while (!bytes.empty()) {
        const auto count = Base::repeated([&] { return ::write(STDOUT_FILENO, bytes.data(), bytes.size()); });
        if (count <= 0)
            ::_exit(1);
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

} // namespace Tamberlin
