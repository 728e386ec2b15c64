#pragma once

#include <csignal>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace Test {

// A program that runs beside a test, until the object is gone: its standard input ends then, and it is
// killed.
class Helper {
public:
    explicit Helper(std::vector<std::string> command)
    {
        int input[2], output[2];
        if (::pipe(input) != 0 || ::pipe(output) != 0 || (m_process = ::fork()) < 0)
            throw std::runtime_error("no helper");
        if (m_process == 0) {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL); // Nor does it outlive a test that crashes.
            ::dup2(input[0], STDIN_FILENO);
            ::dup2(output[1], STDOUT_FILENO);
            for (const int end : { input[0], input[1], output[0], output[1] })
                ::close(end);
            std::vector<char*> arguments;
            for (auto& argument : command)
                arguments.push_back(argument.data());
            arguments.push_back(nullptr);
            ::execvp(arguments[0], arguments.data());
            ::_exit(127);
        }
        ::close(input[0]);
        ::close(output[1]);
        m_input = input[1];
        m_output = ::fdopen(output[0], "r");
    }
    ~Helper()
    {
        ::close(m_input);
        kill(SIGKILL);
        ::waitpid(m_process, nullptr, 0);
        std::fclose(m_output);
    }
    Helper(const Helper&) = delete;
    Helper& operator=(const Helper&) = delete;

    // The next line that it writes; empty when it has ended.
    std::string line() const
    {
        std::string line;
        for (int c; (c = std::fgetc(m_output)) != EOF && c != '\n';)
            line += static_cast<char>(c);
        return line;
    }
    void kill(int signal) const { ::kill(m_process, signal); }

private:
    pid_t m_process = -1;
    int m_input = -1;
    FILE* m_output = nullptr;
};

} // namespace Test
