#include "support/child_process.h"

#include "support/clock.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace tessarel::bench {

namespace {

using namespace std::chrono_literals;

constexpr auto kTimeToEnd = 2s;

} // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command) {
    std::vector<char*> arguments;
    for (const auto& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str())); // posix_spawn does not write to them
    arguments.push_back(nullptr);

    std::array<int, 2> pipe{};
    if (pipe2(pipe.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    posix_spawn_file_actions_t actions{};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipe[1], STDOUT_FILENO);
    const auto error = posix_spawnp(&m_pid, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(pipe[1]);
    m_output = pipe[0];
    if (error != 0) {
        close(m_output);
        throw std::runtime_error("cannot start " + command.front());
    }
}

ChildProcess::~ChildProcess() {
    kill(m_pid, SIGTERM);
    const auto end = Clock::now() + kTimeToEnd;
    while (!reap(WNOHANG) && Clock::now() < end)
        std::this_thread::sleep_for(1ms);
    if (m_pid > 0) {
        kill(m_pid, SIGKILL);
        reap(0);
    }
    close(m_output);
}

bool ChildProcess::reap(int options) {
    if (m_pid > 0 && waitpid(m_pid, nullptr, options) != 0)
        m_pid = -1;
    return m_pid < 0;
}

bool ChildProcess::hasSpoken() const {
    pollfd output{m_output, POLLIN, 0};
    return poll(&output, 1, 0) > 0 && (output.revents & POLLIN) != 0;
}

bool ChildProcess::isRunning() {
    return !reap(WNOHANG);
}

} // namespace tessarel::bench
