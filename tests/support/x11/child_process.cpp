// SPDX-License-Identifier: MIT

#include "support/x11/child_process.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <iterator>
#include <poll.h>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tessarel::x11test {

namespace {

constexpr std::string_view kInherited[] = {"PATH",         "LD_LIBRARY_PATH", "ASAN_OPTIONS",
                                           "LSAN_OPTIONS", "UBSAN_OPTIONS",   "TMPDIR"};

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

struct Pipe {
    FileDescriptor read;
    FileDescriptor write;
};

Pipe makePipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        fail("pipe");
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

std::vector<char*> pointersTo(std::vector<std::string>& strings) {
    std::vector<char*> pointers;
    for (std::string& string : strings)
        pointers.push_back(string.data());
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> assignments(const Environment& environment) {
    std::vector<std::string> strings;
    for (const auto& [name, value] : environment)
        strings.push_back(name + "=" + value);
    return strings;
}

std::string findProgram(const std::string& name, const Environment& environment) {
    if (name.find('/') != std::string::npos)
        return name;
    const auto path = environment.find("PATH");
    const std::string folders = path == environment.end() ? "/usr/bin:/bin" : path->second;
    for (std::size_t begin = 0; begin <= folders.size();) {
        const std::size_t end = std::min(folders.find(':', begin), folders.size());
        const std::string candidate = folders.substr(begin, end - begin) + "/" + name;
        if (::access(candidate.c_str(), X_OK) == 0)
            return candidate;
        begin = end + 1;
    }
    throw std::runtime_error("no program " + name + " in " + folders);
}

/// Executes the program in the forked child. Makes only async-signal-safe calls.
[[noreturn]] void becomeProgram(const char* program, char* const* arguments, char* const* environment,
                                std::array<int, 3> standardFiles, Alarm alarm, pid_t parent) {
    ::setpgid(0, 0);
    if (alarm == Alarm::Blocked) {
        sigset_t signals;
        ::sigemptyset(&signals);
        ::sigaddset(&signals, SIGALRM);
        ::sigprocmask(SIG_BLOCK, &signals, nullptr);
    }
    ::signal(SIGPIPE, SIG_DFL);
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent)
        ::_exit(127);
    for (int target = 0; target < 3; ++target)
        ::dup2(standardFiles[static_cast<std::size_t>(target)], target);
    ::execve(program, arguments, environment);
    ::_exit(127);
}

int exitCode(int status) {
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

/// Waits until `descriptor` is readable or its other end is closed.
bool waitReadable(int descriptor, const Deadline& deadline) {
    pollfd poll{.fd = descriptor, .events = POLLIN, .revents = 0};
    int ready = 0;
    do
        ready = ::poll(&poll, 1, deadline.remaining());
    while (ready < 0 && errno == EINTR);
    return ready > 0;
}

std::string readAll(int descriptor) {
    std::string text;
    std::array<char, 4096> part{};
    ssize_t length = 0;
    while ((length = ::pread(descriptor, part.data(), part.size(), static_cast<off_t>(text.size()))) > 0)
        text.append(part.data(), static_cast<std::size_t>(length));
    return text;
}

} // namespace

Environment ownEnvironment() {
    Environment environment;
    for (char** variable = environ; *variable; ++variable) {
        const std::string_view assignment(*variable);
        const std::size_t equals = assignment.find('=');
        if (equals != std::string_view::npos)
            environment.emplace(assignment.substr(0, equals), assignment.substr(equals + 1));
    }
    return environment;
}

Environment inheritedEnvironment() {
    Environment environment = ownEnvironment();
    std::erase_if(environment, [](const auto& variable) {
        return std::ranges::find(kInherited, variable.first) == std::end(kInherited);
    });
    // Without a GPU, compiling shaders takes about 0.3 s of each start of a program that draws with OpenGL.
    environment["MESA_SHADER_CACHE_DIR"] = TESSAREL_SHADER_CACHE;
    return environment;
}

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
    if (this != &other) {
        close();
        m_descriptor = std::exchange(other.m_descriptor, -1);
    }
    return *this;
}

void FileDescriptor::close() {
    if (m_descriptor >= 0)
        ::close(std::exchange(m_descriptor, -1));
}

ChildProcess::ChildProcess(const std::vector<std::string>& arguments, const Environment& environment,
                           Alarm alarm)
    : m_name(arguments.at(0)), m_errors(::memfd_create("stderr", MFD_CLOEXEC)) {
    const std::string program = findProgram(m_name, environment);
    std::vector<std::string> argumentStrings = arguments;
    std::vector<std::string> environmentStrings = assignments(environment);
    const std::vector<char*> argv = pointersTo(argumentStrings);
    const std::vector<char*> envp = pointersTo(environmentStrings);
    Pipe input = makePipe();
    Pipe output = makePipe();
    const pid_t parent = ::getpid();

    // With SIGPIPE ignored, writing to a program that has exited is an error instead of the end of the test.
    ::signal(SIGPIPE, SIG_IGN);
    m_pid = ::fork();
    if (m_pid < 0)
        fail("fork");
    if (m_pid == 0)
        becomeProgram(program.c_str(), argv.data(), envp.data(),
                      {input.read.get(), output.write.get(), m_errors.get()}, alarm, parent);
    ::setpgid(m_pid, m_pid);
    m_handle = FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, m_pid, 0)));
    m_input = std::move(input.write);
    m_output = std::move(output.read);
}

ChildProcess::~ChildProcess() {
    kill();
}

void ChildProcess::signal(int signal) const {
    if (!m_exitCode)
        ::kill(m_pid, signal);
}

void ChildProcess::kill() {
    if (!m_exitCode)
        ::kill(-m_pid, SIGKILL);
    static_cast<void>(waitForExit());
}

bool ChildProcess::running() {
    return !waitForExit(Deadline(std::chrono::milliseconds::zero()));
}

std::optional<int> ChildProcess::waitForExit(const Deadline& deadline) {
    if (m_exitCode || !waitReadable(m_handle.get(), deadline))
        return m_exitCode;
    // Kills what the program has started. The process group exists until the program is reaped.
    ::kill(-m_pid, SIGKILL);
    int status = 0;
    ::waitpid(m_pid, &status, 0);
    m_exitCode = exitCode(status);
    return m_exitCode;
}

bool ChildProcess::hasOutput() const {
    return waitReadable(m_output.get(), Deadline(std::chrono::milliseconds::zero()));
}

void ChildProcess::writeLine(std::string_view line) {
    std::string text(line);
    text += '\n';
    std::string_view rest = text;
    while (!rest.empty()) {
        const ssize_t written = ::write(m_input.get(), rest.data(), rest.size());
        if (written < 0)
            fail("write to " + m_name);
        rest.remove_prefix(static_cast<std::size_t>(written));
    }
}

std::optional<std::string> ChildProcess::nextLine(const Deadline& deadline) {
    std::size_t end = 0;
    while ((end = m_unread.find('\n')) == std::string::npos) {
        std::array<char, 4096> part{};
        if (!waitReadable(m_output.get(), deadline))
            throw std::runtime_error(m_name + " says nothing\n" + errors());
        const ssize_t length = ::read(m_output.get(), part.data(), part.size());
        if (length <= 0)
            return std::nullopt;
        m_unread.append(part.data(), static_cast<std::size_t>(length));
    }
    std::string line = m_unread.substr(0, end);
    m_unread.erase(0, end + 1);
    return line;
}

std::string ChildProcess::readLine(const Deadline& deadline) {
    std::optional<std::string> line = nextLine(deadline);
    if (!line)
        throw std::runtime_error(m_name + " has gone\n" + errors());
    return *line;
}

std::string ChildProcess::errors() const {
    return readAll(m_errors.get());
}

std::string runToEnd(const std::vector<std::string>& arguments, const Environment& environment) {
    ChildProcess program(arguments, environment);
    std::string output;
    while (const std::optional<std::string> line = program.nextLine())
        output += *line + "\n";
    if (program.waitForExit() != 0)
        throw std::runtime_error(arguments[0] + " failed: " + program.errors());
    return output;
}

} // namespace tessarel::x11test
