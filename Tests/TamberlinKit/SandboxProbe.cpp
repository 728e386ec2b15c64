#include "DocumentReader/Sandbox.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

// Tries, inside the sandbox, what a document that took hold of its reader would try. Prints what it may do.
// The argument is the folder that may be read.
int main(int, char** arguments)
{
    const std::string folder = arguments[1];
    ::open("/dev/null", O_WRONLY); // What is open stays so.
    Tamberlin::enterSandbox(
        { .memoryBytes = 200'000'000, .processorSeconds = 1, .readableFolders = { folder } });
    const auto report = [](const char* what, bool may) {
        if (may) {
            std::fputs(what, stdout);
            std::fputc('\n', stdout);
        }
    };
    report("read a file of the folder", ::open((folder + "/readable").c_str(), O_RDONLY) >= 0);
    report("read another file", ::open("/etc/passwd", O_RDONLY) >= 0);
    report("write a file of the folder", ::open((folder + "/readable").c_str(), O_WRONLY) >= 0);
    report("make a file", ::open((folder + "/new").c_str(), O_WRONLY | O_CREAT, 0600) >= 0);
    report("remove a file", ::unlink((folder + "/readable").c_str()) == 0);
    report("open a socket", ::socket(AF_INET, SOCK_STREAM, 0) >= 0 || ::socket(AF_UNIX, SOCK_STREAM, 0) >= 0);
    report("start a process", [] {
        const auto child = ::fork();
        if (child == 0)
            ::_exit(0);
        return child > 0;
    }());
    report("start a program", ::execl("/bin/true", "true", nullptr) == 0);
    report("look into another process", ::ptrace(PTRACE_ATTACH, ::getppid(), 0, 0) == 0);
    report("kill another process", ::kill(::getppid(), 0) == 0);
    report("run what it wrote",
        ::mmap(nullptr, 4096, PROT_READ | PROT_WRITE | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)
            != MAP_FAILED);
    report("take little memory",
        std::unique_ptr<void, decltype(&std::free)>(std::malloc(50'000'000), &std::free) != nullptr);
#if !defined(__SANITIZE_ADDRESS__)
    report("take much memory",
        ::mmap(nullptr, 400'000'000, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0) != MAP_FAILED);
#endif
    report("write to an open file", ::write(3, "x", 1) == 1);
    std::fflush(stdout);
    for (;;) // Until its time is up.
        ::getpid();
}
