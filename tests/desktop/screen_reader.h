// SPDX-License-Identifier: MIT

#pragma once

#include "support/x11/child_process.h"
#include "support/x11/frame.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QList>
#include <QString>
#include <QVariant>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace tessarel::x11test {

/// A part of a program's windows as the accessibility bus describes it.
struct Accessible {
    std::string service; ///< together with `path`, the D-Bus object
    std::string path;
    std::string name;
    std::string description;
    std::string role; ///< for example "push button"
    bool isEnabled = false;
    bool isFocusable = false;
    bool isFocused = false;
    bool isShowing = false; ///< the part itself and all its ancestors
    Frame frame;            ///< in pixels of the root window
};

/// A screen reader with a session bus of its own, on which programs publish their accessibility trees.
class ScreenReader {
public:
    /// Throws std::runtime_error if the bus does not start.
    explicit ScreenReader(Environment environment);
    ~ScreenReader();
    ScreenReader(const ScreenReader&) = delete;
    ScreenReader& operator=(const ScreenReader&) = delete;

    /// Returns the environment for programs to be read.
    [[nodiscard]] const Environment& environment() const { return m_environment; }
    /// Sends a signal to the session bus, for example SIGSTOP. The accessibility bus is another process.
    void signalSessionBus(int signal) const { m_sessionBus.signal(signal); }
    /// Sends a signal to the accessibility bus. While that is stopped, nothing can be read.
    void signalAccessibilityBus(int signal) const;

    /// Returns true once the program `application` has published itself.
    [[nodiscard]] bool knows(std::string_view application) const;

    /// Returns all parts of all windows of the program `application`, the windows included, parents before
    /// children. Empty while there is no such program.
    [[nodiscard]] std::vector<Accessible> read(std::string_view application) const;
    /// Returns the first showing part with this role and name.
    [[nodiscard]] std::optional<Accessible> find(std::string_view application, std::string_view role,
                                                 std::string_view name) const;
    /// Reads the current state of a part again.
    [[nodiscard]] Accessible look(const Accessible& before) const;
    /// Returns the parts that the program names as labels of a part.
    [[nodiscard]] std::vector<Accessible> labels(const Accessible& part) const;
    /// Performs the first action of the part. Returns false if it has none.
    [[nodiscard]] bool act(const Accessible& part) const;

private:
    struct Reference {
        QString service;
        QString path;
    };

    [[nodiscard]] QVariant call(const Reference& object, const char* interface, const char* method,
                                const QList<QVariant>& arguments = {}) const;
    [[nodiscard]] std::string property(const Reference& object, const char* name) const;
    /// Returns the elements of an array of references.
    [[nodiscard]] static std::vector<Reference> references(const QDBusArgument& list);
    [[nodiscard]] std::vector<Reference> children(const Reference& object) const;
    [[nodiscard]] std::string roleOf(const Reference& object) const;
    /// Returns the first 32 states, one bit each.
    [[nodiscard]] std::uint32_t statesOf(const Reference& object) const;
    [[nodiscard]] bool isShowing(const Reference& object) const;
    [[nodiscard]] Accessible describe(const Reference& object) const;
    [[nodiscard]] std::vector<Reference> programs(std::string_view name) const;
    [[nodiscard]] std::vector<Reference> windowsOf(std::string_view application) const;
    /// Returns the first showing part with this role and name among `object` and its descendants.
    [[nodiscard]] std::optional<Accessible> findIn(const Reference& object, std::string_view role,
                                                   std::string_view name) const;
    void readInto(std::vector<Accessible>& parts, const Reference& object) const;

    Environment m_environment;
    ChildProcess m_sessionBus; // starts the accessibility bus on demand
    QDBusConnection m_connection;
    pid_t m_accessibilityBus = 0;
};

} // namespace tessarel::x11test
