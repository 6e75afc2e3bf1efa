// SPDX-License-Identifier: MIT

#include "fuzz/input.h"
#include "platform/xdg/applications/command_line.h"
#include "platform/xdg/applications/desktop_entry.h"

#include <cstddef>
#include <cstdint>
#include <glib.h>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

using namespace tessarel;
using xdg::DesktopEntry;

namespace {

/// Requires that an argument arrives whole in the program that an Exec value starts.
void checkExecWord(std::string_view argument) {
    std::string doubled;
    for (const char character : argument)
        doubled.append(character == '%' ? 2 : 1, character);
    fuzz::require(xdg::execWords(DesktopEntry::execWord(argument)) == std::vector{doubled},
                  "a quoted argument is one word");
}

void checkEntry(const DesktopEntry& entry, const std::optional<DesktopEntry>& untranslated) {
    const auto name = entry.name();
    fuzz::require(!name || (!name->empty() && name->find_first_of("\n\r\t") == std::string::npos),
                  "a name is text on one line");
    fuzz::require(untranslated.has_value(), "a valid entry is valid without translations");
    fuzz::require(entry.windowClass() == untranslated->windowClass() &&
                      entry.icon() == untranslated->icon() && entry.programs() == untranslated->programs() &&
                      entry.isShown() == untranslated->isShown() &&
                      entry.isOffered() == untranslated->isOffered(),
                  "an entry says the same without translations");
    (void)entry.genericName();
    (void)entry.isOfferedIn({"GNOME", "X-Other"});
    (void)entry.isStartedBy({"KDE"});
    for (const std::string& program : entry.programs())
        (void)xdg::isInterpreter(xdg::fileName(program));
}

} // namespace

/// Makes each warning of GLib end the fuzzer.
extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/) {
    const auto fail = [](const gchar*, GLogLevelFlags, const gchar* message, gpointer) {
        fuzz::require(false, message);
    };
    g_log_set_default_handler(fail, nullptr);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string content = fuzz::Input(data, size).rest();
    checkExecWord(content);
    if (const auto entry = DesktopEntry::parse(content))
        checkEntry(*entry, DesktopEntry::parseUntranslated(content));
    else
        (void)DesktopEntry::parseUntranslated(content);
    return 0;
}
