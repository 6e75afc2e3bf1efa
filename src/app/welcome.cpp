// SPDX-License-Identifier: MIT

#include "app/welcome.h"

#include "model/config.h"

#include <string>

namespace tessarel {

namespace {

/// Returns "a", "a and b" or "a, b and c".
std::string enumeration(const std::vector<std::string>& items) {
    std::string text;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i > 0)
            text += i + 1 == items.size() ? " and " : ", ";
        text += items[i];
    }
    return text;
}

/// Returns a sentence after a space; empty if no shortcut is taken.
std::string takenNote(const std::vector<std::string>& shortcuts) {
    if (shortcuts.empty())
        return {};
    std::string note(1, ' ');
    note += enumeration(shortcuts);
    note += shortcuts.size() == 1
                ? " belongs to another program already; choose another shortcut in Settings."
                : " belong to another program already; choose other shortcuts in Settings.";
    return note;
}

} // namespace

Alert welcomeAlert(const PlatformWords& words, const WelcomeFacts& facts) {
    const std::string settings =
        facts.hasStatusItem ? "Click the " + words.statusItem + ", then Settings, to"
                            : "Start " + std::string(Config::appName) + " again to open Settings and";
    const std::string ctrlOpt =
        std::string(words.modifierNames.ctrl) + "+" + std::string(words.modifierNames.opt);
    const std::string dragNote = words.welcomeDragNote.empty() ? "" : " " + words.welcomeDragNote;
    const std::string outlinesNote =
        facts.showsOutlines ? " The zones appear as outlines, because no compositor runs." : "";
    return {
        "Welcome to " + std::string(Config::appName),
        words.welcomeFirst + "\n\nTry it: press " + ctrlOpt +
            "+1 to 5 to snap the front window into a zone, or hold Shift while dragging a window to see the "
            "zones." +
            dragNote + outlinesNote + " " + settings + " design your own layout." +
            takenNote(facts.takenShortcuts),
        {"Continue", "Open Settings"}};
}

} // namespace tessarel
