#pragma once

#include "support/x11/deadline.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace tessarel::x11test {

/// Environment variables of a child process; it gets these and no others.
using Environment = std::map<std::string, std::string>;

/// An open file that closes itself.
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

/// A program started by the test, in a process group of its own.
///
/// It does not outlive the test: the destructor kills the whole group, and the kernel kills the program when
/// the test process dies in another way. Its standard input and output are pipes to the test; what it
/// writes to its standard error is kept.
class ChildProcess {
public:
    /// Finds `arguments[0]` in the path of `environment`. Throws std::runtime_error when there is no such
    /// program.
    ChildProcess(const std::vector<std::string>& arguments, const Environment& environment);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ~ChildProcess();

    [[nodiscard]] pid_t pid() const { return m_pid; }

    /// Sends `signal` to the program alone.
    void signal(int signal) const;
    /// Kills the program and all that it started, and waits until it has gone.
    void kill();

    [[nodiscard]] bool running();
    /// Waits until the program has ended: its exit code, or 128 + the signal that ended it; empty when it
    /// still runs at the deadline.
    [[nodiscard]] std::optional<int> waitForExit(const Deadline& deadline = Deadline());

    /// Writes `line` and a line feed to the program's standard input. Throws when the program has gone.
    void writeLine(std::string_view line);
    /// The next line of the program's standard output, without its line feed; empty when it has closed its
    /// output. Throws when the deadline passes before the line is complete.
    [[nodiscard]] std::optional<std::string> nextLine(const Deadline& deadline = Deadline());
    /// The same of a program that must have one more line to say; throws when it has not.
    [[nodiscard]] std::string readLine(const Deadline& deadline = Deadline());

    /// All that the program has written to its standard error so far.
    [[nodiscard]] std::string errors() const;

private:
    std::string m_name;
    pid_t m_pid = -1;
    FileDescriptor m_handle; // becomes readable when the program has ended
    FileDescriptor m_input;
    FileDescriptor m_output;
    FileDescriptor m_errors;
    std::string m_unread;
    std::optional<int> m_exitCode;
};

/// Runs a program to its end and answers what it wrote to its standard output. Throws std::runtime_error
/// with its standard error when it fails.
std::string runToEnd(const std::vector<std::string>& arguments, const Environment& environment);

} // namespace tessarel::x11test
