// SPDX-License-Identifier: MIT

#include "desktop/screen_reader.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace tessarel::x11test {

namespace {

constexpr const char* kAccessible = "org.a11y.atspi.Accessible";
constexpr const char* kAction = "org.a11y.atspi.Action";
constexpr const char* kComponent = "org.a11y.atspi.Component";
constexpr const char* kProperties = "org.freedesktop.DBus.Properties";
constexpr std::uint32_t kOfTheScreen = 0;
constexpr std::uint32_t kLabelledBy = 2; // a type of relation

// Bit positions of the AT-SPI states.
constexpr unsigned kEnabled = 8;
constexpr unsigned kFocusable = 11;
constexpr unsigned kFocused = 12;
constexpr unsigned kShowing = 25;

bool has(std::uint32_t states, unsigned state) {
    return (states >> state & 1U) != 0;
}

QDBusConnection connect(const QString& address) {
    const QDBusConnection connection = QDBusConnection::connectToBus(address, address);
    if (!connection.isConnected())
        throw std::runtime_error("no bus at " + address.toStdString());
    return connection;
}

/// Returns the elements of a D-Bus array of 32-bit integers.
std::vector<std::uint32_t> words(const QVariant& list) {
    std::vector<std::uint32_t> all;
    const auto argument = list.value<QDBusArgument>();
    if (argument.currentType() != QDBusArgument::ArrayType)
        return all;
    argument.beginArray();
    while (!argument.atEnd()) {
        quint32 word = 0;
        argument >> word;
        all.push_back(word);
    }
    argument.endArray();
    return all;
}

Frame frameOf(const QVariant& extents) {
    Frame frame;
    const auto argument = extents.value<QDBusArgument>();
    if (argument.currentType() != QDBusArgument::StructureType)
        return frame;
    argument.beginStructure();
    argument >> frame.x >> frame.y >> frame.width >> frame.height;
    argument.endStructure();
    return frame;
}

} // namespace

ScreenReader::ScreenReader(Environment environment)
    : m_environment(std::move(environment)),
      m_sessionBus({"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address",
                    "--address=unix:dir=" + m_environment.at("XDG_RUNTIME_DIR")},
                   m_environment),
      m_connection(connect(QString::fromStdString(m_sessionBus.readLine()))) {
    m_environment["DBUS_SESSION_BUS_ADDRESS"] = m_connection.name().toStdString();
    m_environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1";
    const QVariant address = call({"org.a11y.Bus", "/org/a11y/bus"}, "org.a11y.Bus", "GetAddress");
    m_connection = connect(address.toString());
    const QVariant process = call({"org.freedesktop.DBus", "/org/freedesktop/DBus"}, "org.freedesktop.DBus",
                                  "GetConnectionUnixProcessID", {"org.freedesktop.DBus"});
    m_accessibilityBus = static_cast<pid_t>(process.toUInt());
}

ScreenReader::~ScreenReader() {
    QDBusConnection::disconnectFromBus(m_connection.name());
}

void ScreenReader::signalAccessibilityBus(int signal) const {
    if (m_accessibilityBus <= 0 || ::kill(m_accessibilityBus, signal) != 0)
        throw std::runtime_error("cannot signal the accessibility bus");
}

QVariant ScreenReader::call(const Reference& object, const char* interface, const char* method,
                            const QList<QVariant>& arguments) const {
    auto message = QDBusMessage::createMethodCall(object.service, object.path, QLatin1String(interface),
                                                  QLatin1String(method));
    message.setArguments(arguments);
    return m_connection.call(message).arguments().value(0); // invalid if the object no longer exists
}

std::string ScreenReader::property(const Reference& object, const char* name) const {
    const QVariant value =
        call(object, kProperties, "Get", {QLatin1String(kAccessible), QLatin1String(name)});
    return value.value<QDBusVariant>().variant().toString().toStdString();
}

std::vector<ScreenReader::Reference> ScreenReader::children(const Reference& object) const {
    const auto list = call(object, kAccessible, "GetChildren").value<QDBusArgument>();
    return list.currentType() == QDBusArgument::ArrayType ? references(list) : std::vector<Reference>();
}

std::vector<ScreenReader::Reference> ScreenReader::references(const QDBusArgument& list) {
    std::vector<Reference> all;
    list.beginArray();
    while (!list.atEnd()) {
        Reference child;
        QDBusObjectPath path;
        list.beginStructure();
        list >> child.service >> path;
        list.endStructure();
        child.path = path.path();
        all.push_back(child);
    }
    list.endArray();
    return all;
}

std::string ScreenReader::roleOf(const Reference& object) const {
    return call(object, kAccessible, "GetRoleName").toString().toStdString();
}

std::uint32_t ScreenReader::statesOf(const Reference& object) const {
    const std::vector<std::uint32_t> states = words(call(object, kAccessible, "GetState"));
    return states.empty() ? 0 : states.front();
}

bool ScreenReader::isShowing(const Reference& object) const {
    return has(statesOf(object), kShowing);
}

Accessible ScreenReader::describe(const Reference& object) const {
    const std::uint32_t states = statesOf(object);
    return {.service = object.service.toStdString(),
            .path = object.path.toStdString(),
            .name = property(object, "Name"),
            .description = property(object, "Description"),
            .role = roleOf(object),
            .isEnabled = has(states, kEnabled),
            .isFocusable = has(states, kFocusable),
            .isFocused = has(states, kFocused),
            .isShowing = has(states, kShowing),
            .frame = frameOf(call(object, kComponent, "GetExtents", {kOfTheScreen}))};
}

void ScreenReader::readInto(std::vector<Accessible>& parts, const Reference& object) const {
    parts.push_back(describe(object));
    for (const Reference& child : children(object))
        readInto(parts, child);
}

std::vector<ScreenReader::Reference> ScreenReader::programs(std::string_view name) const {
    std::vector<Reference> named;
    std::ranges::copy_if(children({"org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root"}),
                         std::back_inserter(named),
                         [&](const Reference& program) { return property(program, "Name") == name; });
    return named;
}

std::vector<ScreenReader::Reference> ScreenReader::windowsOf(std::string_view application) const {
    std::vector<Reference> windows;
    for (const Reference& program : programs(application))
        std::ranges::copy(children(program), std::back_inserter(windows));
    return windows;
}

bool ScreenReader::knows(std::string_view application) const {
    return !programs(application).empty();
}

std::vector<Accessible> ScreenReader::read(std::string_view application) const {
    std::vector<Accessible> parts;
    for (const Reference& window : windowsOf(application))
        readInto(parts, window);
    return parts;
}

std::optional<Accessible> ScreenReader::findIn(const Reference& object, std::string_view role,
                                               std::string_view name) const {
    if (property(object, "Name") == name && roleOf(object) == role) {
        const Accessible part = describe(object);
        if (part.isShowing)
            return part;
    }
    const std::vector<Reference> all = children(object);
    if (all.empty() || !isShowing(object)) // most parts are on the tabs behind
        return std::nullopt;
    for (const Reference& child : all)
        if (auto found = findIn(child, role, name))
            return found;
    return std::nullopt;
}

std::optional<Accessible> ScreenReader::find(std::string_view application, std::string_view role,
                                             std::string_view name) const {
    for (const Reference& window : windowsOf(application))
        if (auto found = findIn(window, role, name))
            return found;
    return std::nullopt;
}

Accessible ScreenReader::look(const Accessible& before) const {
    return describe({QString::fromStdString(before.service), QString::fromStdString(before.path)});
}

std::vector<Accessible> ScreenReader::labels(const Accessible& part) const {
    std::vector<Accessible> all;
    const auto relations = call({QString::fromStdString(part.service), QString::fromStdString(part.path)},
                                kAccessible, "GetRelationSet")
                               .value<QDBusArgument>();
    if (relations.currentType() != QDBusArgument::ArrayType)
        return all;
    relations.beginArray();
    while (!relations.atEnd()) {
        quint32 kind = 0;
        relations.beginStructure();
        relations >> kind;
        const std::vector<Reference> targets = references(relations);
        relations.endStructure();
        if (kind == kLabelledBy)
            std::ranges::transform(targets, std::back_inserter(all),
                                   [this](const Reference& label) { return describe(label); });
    }
    relations.endArray();
    return all;
}

bool ScreenReader::act(const Accessible& part) const {
    const Reference object{QString::fromStdString(part.service), QString::fromStdString(part.path)};
    return call(object, kAction, "DoAction", {0}).toBool();
}

} // namespace tessarel::x11test
