// SPDX-License-Identifier: MIT

#include "app/command_runner.h"

#include "model/json.h"
#include "model/presets.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>
#include <variant>

namespace tessarel {

namespace {

/// Returns why an action has come to nothing: one sentence without a capital letter and a full stop.
std::string_view reason(Outcome outcome) {
    switch (outcome) {
    case Outcome::Done:
        return {};
    case Outcome::Paused:
        return "Tessarel is paused";
    case Outcome::NotTrusted:
        return "Tessarel cannot move windows; its settings say why";
    case Outcome::ZoneDisabled:
        return "the zone is disabled";
    case Outcome::NoWindow:
        return "there is no window to move";
    case Outcome::Refused:
        return "the desktop does not let the window be moved";
    case Outcome::NothingToRestore:
        return "the window has not been placed";
    case Outcome::NoOtherDisplay:
        return "there is no other display";
    }
    return {};
}

CommandReply nothingDone(std::string_view why) {
    return {CommandExit::NothingDone, std::string(why)};
}

/// Returns a number with at most two decimals.
std::string text(double number) {
    const double rounded = std::round(number * 100) / 100 + 0.0; // no -0
    std::string written = writeJson(rounded).value_or("0");
    if (written.ends_with(".0"))
        written.resize(written.size() - 2);
    return written;
}

/// Returns a frame as in "1600x900+0+25".
std::string text(const Rect& rect) {
    const auto place = [](double value) { return std::string(value < 0 ? "" : "+").append(text(value)); };
    return text(rect.absWidth()) + "x" + text(rect.absHeight()) + place(rect.minX()) + place(rect.minY());
}

Json json(const Rect& rect) {
    return {{"x", rect.minX()}, {"y", rect.minY()}, {"width", rect.absWidth()}, {"height", rect.absHeight()}};
}

/// Returns `name`, which is UTF-8, on one line, with spaces for control characters: a terminal would carry
/// some of them out.
std::string printable(std::string_view name) {
    constexpr unsigned char kDelete = 0x7F;
    constexpr unsigned char kLeadOfC1 = 0xC2; // U+0080 to U+009F are C2 80 to C2 9F
    constexpr unsigned char kLastOfC1 = 0x9F;
    std::string text;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const auto byte = static_cast<unsigned char>(name[i]);
        const auto next = static_cast<unsigned char>(i + 1 < name.size() ? name[i + 1] : ' ');
        const bool isC1 = byte == kLeadOfC1 && next > kDelete && next <= kLastOfC1;
        text += byte < ' ' || byte == kDelete || isC1 ? ' ' : name[i];
        i += isC1 ? 1 : 0;
    }
    return text;
}

/// What one entry of a list looks like.
struct Entry {
    std::string line;
    Json json;
};

std::vector<Entry> actionEntries() {
    std::vector<Entry> entries;
    for (const ActionID action : ActionID::allCases) {
        const std::string name = commandName(action);
        entries.push_back(
            {name + "\t" + std::string(action.title()), {{"name", name}, {"title", action.title()}}});
    }
    return entries;
}

std::vector<Entry> layoutEntries(const AppSettings& settings) {
    std::vector<Entry> entries;
    for (const auto& [layouts, isBuiltIn] :
         {std::pair(&Presets::all(), true), std::pair(&settings.userLayouts, false)}) {
        for (const Layout& layout : *layouts)
            entries.push_back({printable(layout.name), {{"name", layout.name}, {"builtIn", isBuiltIn}}});
    }
    return entries;
}

std::vector<Entry> zoneEntries(const AppSettings& settings) {
    std::vector<Entry> entries;
    for (const Zone& zone : settings.zones) {
        const std::string number = std::to_string(entries.size() + 1);
        const std::string frame = "left " + text(zone.x) + " %, top " + text(zone.y) + " %, width " +
                                  text(zone.w) + " %, height " + text(zone.h) + " %";
        entries.push_back({number + "\t" + (zone.enabled ? frame : "off"),
                           {{"number", entries.size() + 1},
                            {"enabled", zone.enabled},
                            {"x", zone.x},
                            {"y", zone.y},
                            {"w", zone.w},
                            {"h", zone.h}}});
    }
    return entries;
}

std::vector<Entry> displayEntries(const Screens& screens, const std::vector<Screen>& all) {
    std::vector<Entry> entries;
    for (const Screen& screen : all) {
        const Rect frame = screens.axFrame(screen);
        const Rect usable = screens.axVisible(screen);
        Json described = json(frame);
        described["usable"] = json(usable);
        entries.push_back(
            {std::to_string(entries.size() + 1) + "\t" + text(frame) + "\tusable " + text(usable),
             std::move(described)});
    }
    return entries;
}

std::string lines(const std::vector<Entry>& entries) {
    std::string all;
    for (const Entry& entry : entries)
        all.append(all.empty() ? "" : "\n").append(entry.line);
    return all;
}

std::string document(const std::vector<Entry>& entries) {
    Json all = Json::array();
    for (const Entry& entry : entries)
        all.push_back(entry.json);
    return writeJson(all).value_or("[]");
}

/// Returns the layout with that name, the user's before a built-in one; null if there is none.
const Layout* layoutNamed(const std::string& name, const AppSettings& settings) {
    for (const auto* const layouts : {&settings.userLayouts, &Presets::all()}) {
        const auto found = std::find_if(layouts->begin(), layouts->end(),
                                        [&name](const Layout& layout) { return layout.name == name; });
        if (found != layouts->end())
            return &*found;
    }
    return nullptr;
}

} // namespace

CommandRunner::CommandRunner(Uses uses) : m_uses(std::move(uses)) {}

CommandReply CommandRunner::run(const std::vector<std::string>& words) {
    ParsedCommand parsed = parseCommand(words);
    if (!parsed.command)
        return {CommandExit::Wrong, std::move(parsed.problem)};
    return std::visit([this](const auto& command) { return carryOut(command); }, *parsed.command);
}

CommandReply CommandRunner::carryOut(const command::RunAction& command) {
    // Nobody may be in front of the screen when a script runs.
    if (!m_uses.runtime.paused && !m_uses.permissions.isTrusted())
        return nothingDone(reason(Outcome::NotTrusted));
    const Outcome outcome = m_uses.actions.run(command.action);
    return outcome == Outcome::Done ? CommandReply{} : nothingDone(reason(outcome));
}

CommandReply CommandRunner::carryOut(const command::ApplyLayout& command) {
    const Layout* const layout = layoutNamed(command.name, m_uses.store.settings);
    if (!layout)
        return nothingDone("there is no layout \"" + command.name + "\"");
    m_uses.applyZones(layout->zones);
    return {};
}

CommandReply CommandRunner::carryOut(const command::SetPause& command) {
    m_uses.setPaused(command.paused.value_or(!m_uses.runtime.paused));
    return {};
}

CommandReply CommandRunner::carryOut(const command::Quit& /*command*/) {
    m_uses.quit();
    return {};
}

CommandReply CommandRunner::carryOut(const command::List& command) {
    const auto entries = [this, what = command.what] {
        switch (what) {
        case command::List::What::Actions:
            return actionEntries();
        case command::List::What::Layouts:
            return layoutEntries(m_uses.store.settings);
        case command::List::What::Zones:
            return zoneEntries(m_uses.store.settings);
        case command::List::What::Displays:
            return displayEntries(m_uses.geo.screens(), m_uses.displays.screens());
        }
        return std::vector<Entry>{};
    }();
    return {CommandExit::Done, command.asJson ? document(entries) : lines(entries)};
}

} // namespace tessarel
