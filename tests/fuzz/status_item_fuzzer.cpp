// SPDX-License-Identifier: MIT

#include "fuzz/input.h"
#include "fuzz/status_item_desktop.h"
#include "support/menu_rows.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

using namespace tessarel;

namespace {

fuzz::StatusItemDesktop* desktop = nullptr; // never destroyed, because Qt's own globals are gone by then

Menu usualMenu() {
    MenuItem title = row("Title", MenuCommand::None);
    title.isEnabled = false;
    MenuItem checked = row("Checked", MenuCommand::None);
    checked.isChecked = true;
    return {title, MenuItem::separator(), submenu("Layouts", {checked, row("Mine", MenuCommand::None)}),
            row("Quit", MenuCommand::None)};
}

QString takeText(fuzz::Input& input) {
    const std::string bytes = input.bytes(input.below(16));
    QString text = QStringLiteral(""); // a null string is no value
    text += QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
    return text.remove(QChar::Null); // the library rejects it
}

/// Takes the number of a row: mostly of one that exists.
int takeId(fuzz::Input& input) {
    const auto& ids = desktop->ids();
    const std::size_t place = input.byte();
    return place < 200 && !ids.empty() ? ids[place % ids.size()] : static_cast<int>(place) - 203;
}

QVariant takeArgument(fuzz::Input& input) {
    switch (input.below(9)) {
    case 0:
        return takeId(input);
    case 1:
        return static_cast<uint>(input.word()) << 16U;
    case 2:
        return takeText(input);
    case 3:
        return QStringList{takeText(input), QStringLiteral("label"), QStringLiteral("children-display")};
    case 4:
        return QVariant::fromValue(QList<int>{takeId(input), takeId(input)});
    case 5:
        return QVariant::fromValue(QDBusVariant(takeText(input)));
    case 6:
        return QVariant::fromValue(QDBusVariant(takeId(input)));
    case 7:
        return input.below(2) == 1;
    default:
        return 1e300 * input.byte();
    }
}

/// A method, and arguments of the types that it expects.
struct Method {
    const char* path;
    const char* interface;
    const char* name;
    QVariantList (*arguments)(fuzz::Input& input);
};

constexpr const char* kMenuPath = "/MenuBar";
constexpr const char* kItemPath = "/StatusNotifierItem";
constexpr const char* kMenu = "com.canonical.dbusmenu";
constexpr const char* kItem = "org.kde.StatusNotifierItem";
constexpr const char* kProperties = "org.freedesktop.DBus.Properties";

QVariantList event(fuzz::Input& input) {
    constexpr std::array kEvents = {"clicked", "hovered", "opened", "closed", "nonsense"};
    return {takeId(input), QString::fromLatin1(kEvents.at(input.below(kEvents.size()))),
            QVariant::fromValue(QDBusVariant(takeText(input))), uint{0}};
}

QVariantList layout(fuzz::Input& input) {
    return {takeId(input), static_cast<int>(input.byte()) - 2, QStringList{takeText(input)}};
}

QVariantList properties(fuzz::Input& input) {
    return {QVariant::fromValue(QList<int>{takeId(input), takeId(input)}), QStringList{takeText(input)}};
}

QVariantList property(fuzz::Input& input) {
    return {takeId(input), takeText(input)};
}

QVariantList oneRow(fuzz::Input& input) {
    return {takeId(input)};
}

QVariantList namedProperty(fuzz::Input& input) {
    constexpr std::array kNames = {"Menu", "IconPixmap", "ToolTip", "Version", "Status", "nonsense"};
    return {takeText(input), QString::fromLatin1(kNames.at(input.below(kNames.size())))};
}

QVariantList nothing(fuzz::Input& /*input*/) {
    return {};
}

constexpr std::array kMethods = std::to_array<Method>({
    {kMenuPath, kMenu, "Event", event},
    {kMenuPath, kMenu, "AboutToShow", oneRow},
    {kMenuPath, kMenu, "GetLayout", layout},
    {kMenuPath, kMenu, "GetGroupProperties", properties},
    {kMenuPath, kMenu, "GetProperty", property},
    {kMenuPath, kMenu, "EventGroup", nothing},
    {kMenuPath, kMenu, "AboutToShowGroup", nothing},
    {kMenuPath, kProperties, "Get", namedProperty},
    {kItemPath, kItem, "Scroll", property},
    {kItemPath, kProperties, "Get", namedProperty},
    {kItemPath, kProperties, "Set", namedProperty},
    {kItemPath, "", "Introspect", nothing},
});

/// Clicks of the icon open a menu of our own on the screen, which takes far longer than everything else. So
/// they take two bytes that mutations seldom put side by side.
constexpr std::array kClicks = {"Activate", "SecondaryActivate", "ContextMenu"};

QDBusMessage takeCall(fuzz::Input& input) {
    const std::size_t choice = input.byte();
    if (choice == 255 && input.byte() == 154)
        return desktop->call(kItemPath, kItem, kClicks.at(input.below(kClicks.size())),
                             {takeId(input), takeId(input)});
    const Method& method = kMethods.at(choice % kMethods.size());
    if (choice < 220)
        return desktop->call(method.path, method.interface, method.name, method.arguments(input));
    QVariantList arguments;
    for (std::size_t count = input.below(5); count > 0; --count)
        arguments << takeArgument(input);
    return desktop->call(method.path, method.interface, method.name, arguments);
}

} // namespace

/// The libraries keep what they load once.
extern "C" const char* __lsan_default_suppressions() { // NOLINT(bugprone-reserved-identifier): named by clang
    return "leak:libfontconfig\nleak:libQt6\nleak:libdbus\nleak:libglib\nleak:libX11\nleak:libxcb";
}

extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/) {
    qDBusRegisterMetaType<QList<int>>();
    desktop = new fuzz::StatusItemDesktop(usualMenu());
    return 0;
}

/// Reads calls that a hostile panel makes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    while (!input.isAtEnd())
        desktop->send(takeCall(input));
    return 0;
}
