#pragma once

#include "support/x11/child_process.h"
#include "support/x11/frame.h"

#include <QDBusConnection>
#include <QList>
#include <QString>
#include <QVariant>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarel::x11test {

/// A part of a program's windows as it is told to those who do not see it.
struct Accessible {
    std::string service; ///< with `path` the object that it is
    std::string path;
    std::string name;
    std::string description;
    std::string role; ///< such as "push button"
    bool isEnabled = false;
    bool isFocusable = false;
    bool isFocused = false;
    bool isShowing = false; ///< it and all that it is in
    Frame frame;            ///< in pixels of the root window
};

/// A screen reader on a bus of its own, on which programs tell of their windows.
class ScreenReader {
public:
    /// Throws std::runtime_error when the bus does not come up.
    explicit ScreenReader(Environment environment);
    ~ScreenReader();
    ScreenReader(const ScreenReader&) = delete;
    ScreenReader& operator=(const ScreenReader&) = delete;

    /// For programs that are to be read.
    [[nodiscard]] const Environment& environment() const { return m_environment; }

    /// All that is in the windows of the program called `application`, the windows included, each before what
    /// is in it. Empty while there is no such program.
    [[nodiscard]] std::vector<Accessible> read(std::string_view application) const;
    /// The first showing part with this role and name.
    [[nodiscard]] std::optional<Accessible> find(std::string_view application, std::string_view role,
                                                 std::string_view name) const;
    /// The same part as it is now.
    [[nodiscard]] Accessible look(const Accessible& before) const;
    /// Does what the part is for, as its first action. False when it has none.
    [[nodiscard]] bool act(const Accessible& part) const;

private:
    struct Reference {
        QString service;
        QString path;
    };

    [[nodiscard]] QVariant call(const Reference& object, const char* interface, const char* method,
                                const QList<QVariant>& arguments = {}) const;
    [[nodiscard]] std::string property(const Reference& object, const char* name) const;
    [[nodiscard]] std::vector<Reference> children(const Reference& object) const;
    [[nodiscard]] std::string roleOf(const Reference& object) const;
    [[nodiscard]] Accessible describe(const Reference& object) const;
    [[nodiscard]] std::vector<Reference> windowsOf(std::string_view application) const;
    /// The first showing part with this role and name among `object` and what is in it.
    [[nodiscard]] std::optional<Accessible> findIn(const Reference& object, std::string_view role,
                                                   std::string_view name) const;
    void readInto(std::vector<Accessible>& parts, const Reference& object) const;

    Environment m_environment;
    ChildProcess m_sessionBus; // which starts the bus that programs are read on
    QDBusConnection m_connection;
};

} // namespace tessarel::x11test
