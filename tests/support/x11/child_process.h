// SPDX-License-Identifier: MIT

#pragma once

#include "support/x11/deadline.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace tessarel::x11test {

/// The complete environment of a child process; nothing else is inherited.
using Environment = std::map<std::string, std::string>;

/// Returns the environment of this process.
[[nodiscard]] Environment ownEnvironment();
/// Returns what a private session inherits of it: where programs are, and the options of the sanitizers. All
/// sessions share one cache of compiled shaders.
[[nodiscard]] Environment inheritedEnvironment();

/// An owned file descriptor, closed on destruction.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) : m_descriptor(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept;
    ~FileDescriptor() { close(); }

    [[nodiscard]] int get() const { return m_descriptor; }
    void close();

private:
    int m_descriptor = -1;
};

/// Whether SIGALRM reaches a program. By that signal the program under test exits if it does not end in order
/// in time (`TerminationSignals`). Where it is blocked, the program ends in order or not at all.
enum class Alarm : std::uint8_t { Delivered, Blocked };

/// A program started by the test, in a process group of its own.
///
/// It does not outlive the test: the destructor kills the whole group, and the kernel kills the program if
/// the test process dies in another way. Its standard input and output are pipes to the test; its standard
/// error is stored.
class ChildProcess {
public:
    /// Starts `arguments[0]`, looked up in the PATH of `environment`. Throws std::runtime_error if there is
    /// no such program.
    explicit ChildProcess(const std::vector<std::string>& arguments,
                          const Environment& environment = ownEnvironment(), Alarm alarm = Alarm::Delivered);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ~ChildProcess();

    [[nodiscard]] pid_t pid() const { return m_pid; }

    /// Sends `signal` to the program only, not to its process group.
    void signal(int signal) const;
    /// Kills the program and everything that it has started, and waits until it has exited.
    void kill();

    [[nodiscard]] bool running();
    /// Waits until the program has exited. Returns its exit code, or 128 + the signal that ended it; empty if
    /// it is still running at the deadline.
    [[nodiscard]] std::optional<int> waitForExit(const Deadline& deadline = Deadline());

    /// Returns true if the program has written to its standard output, which stays unread.
    [[nodiscard]] bool hasOutput() const;
    /// Writes `line` and a line feed to the program's standard input. Throws if the program has exited.
    void writeLine(std::string_view line);
    /// Returns the next line of the program's standard output, without its line feed; empty once the program
    /// has closed its output. Throws if the line is not complete at the deadline.
    [[nodiscard]] std::optional<std::string> nextLine(const Deadline& deadline = Deadline());
    /// Like nextLine(), but throws if the output is closed.
    [[nodiscard]] std::string readLine(const Deadline& deadline = Deadline());

    /// Returns everything that the program has written to its standard error so far.
    [[nodiscard]] std::string errors() const;

private:
    std::string m_name;
    pid_t m_pid = -1;
    FileDescriptor m_handle; // a pidfd, which becomes readable when the program exits
    FileDescriptor m_input;
    FileDescriptor m_output;
    FileDescriptor m_errors;
    std::string m_unread;
    std::optional<int> m_exitCode;
};

/// Runs a program until it exits and returns its standard output. Throws std::runtime_error with its standard
/// error if it fails.
std::string runToEnd(const std::vector<std::string>& arguments, const Environment& environment);

} // namespace tessarel::x11test
