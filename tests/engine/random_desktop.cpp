// SPDX-License-Identifier: MIT

#include "engine/random_desktop.h"

#include "model/action_id.h"
#include "model/presets.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <string>

namespace tessarel {

namespace {

using namespace std::chrono_literals;

constexpr std::array kBundleIdentifiers{"org.example.editor", "org.example.terminal", "org.example.Editor",
                                        "org.example.browser", ""};

double half(Dice& dice) {
    return dice.oneIn(4) ? 0.5 : 0;
}

/// Returns the extent that a bar or dock takes from one side; 0 without one.
double bar(Dice& dice, double extent) {
    return dice.oneIn(3) ? std::min(dice.pick({25.0, 22.5, 48.0, 70.0, 121.0}), extent / 4) : 0;
}

Point randomOrigin(Dice& dice, const Size& size, const std::vector<Screen>& others) {
    if (others.empty())
        return dice.oneIn(3) ? Point{dice.between(-3000, 3000) + half(dice), dice.between(-3000, 3000) + 0.0}
                             : Point{};
    const Rect& other = dice.pick(others).frame;
    const double slide = dice.oneIn(2) ? 0 : dice.between(-400, 400) + half(dice);
    switch (dice.below(6)) {
    case 0:
        return {other.maxX(), other.y + slide};
    case 1:
        return {other.x - size.width, other.y + slide};
    case 2:
        return {other.x + slide, other.maxY()};
    case 3:
        return {other.x + slide, other.y - size.height};
    case 4:
        return other.origin();
    default:
        return {dice.between(-4000, 4000) + half(dice), dice.between(-3000, 3000) + half(dice)};
    }
}

Zone randomZone(Dice& dice) {
    constexpr double kThird = 100.0 / 3;
    const auto part = [&] {
        return dice.pick({0.0, 10.0, 20.0, 25.0, kThird, 50.0, 60.0, 2 * kThird, 75.0, 12.5, 1.0});
    };
    Zone zone{!dice.oneIn(3), part(), part(), part(), part()};
    if (dice.oneIn(2))
        zone.w = 100 - zone.x;
    if (dice.oneIn(2))
        zone.h = 100 - zone.y;
    if (dice.oneIn(60))
        zone.w = -zone.w;
    return zone;
}

std::vector<Zone> randomZones(Dice& dice) {
    if (dice.oneIn(2))
        return dice.pick(Presets::all()).zones;
    std::vector<Zone> zones;
    const auto count = dice.below(kZoneSlots + 1);
    while (zones.size() < count)
        zones.push_back(randomZone(dice));
    return Presets::pad(zones);
}

AppSettings::Bindings randomBindings(Dice& dice) {
    AppSettings::Bindings bindings = AppSettings::defaultBindings();
    if (dice.oneIn(3))
        return bindings;
    for (const ActionID action : ActionID::allCases) {
        Binding& binding = bindings[std::string(action.rawValue())];
        if (dice.oneIn(12))
            bindings.erase(std::string(action.rawValue()));
        else if (dice.oneIn(15))
            binding = ActionID::allCases.at(dice.below(ActionID::allCases.size())).defaultBinding();
        else if (dice.oneIn(30))
            binding.keyCode = dice.pick({10, 127, 128, 60000});
        else if (dice.oneIn(30))
            binding.mods = dice.pick({0, 256, 1024, 65536, 6144});
    }
    if (dice.oneIn(4))
        bindings["zone10"] = {29, 6144};
    return bindings;
}

void overrideOneAttribute(Dice& dice, sim::SimWindow& window) {
    const auto attribute = dice.pick({attribute::kPosition, attribute::kSize, attribute::kRole,
                                      attribute::kMinimized, attribute::kFullScreen, attribute::kPosition});
    const Rect& frame = window.axFrame;
    const double off = dice.pick({0.0, 2.0, 3.0, 4.0, 4.5, -4.0, 30.0});
    std::optional<AttributeValue> said;
    switch (dice.below(8)) {
    case 0:
        said = Point{frame.x + off, frame.y};
        break;
    case 1:
        said = Size{frame.width, frame.height + off};
        break;
    case 2:
        said = dice.pick({0.0, 1.0, 2.0});
        break;
    case 3:
        said = dice.oneIn(2);
        break;
    case 4:
        said = std::string(dice.pick({"AXWindow", "AXSheet", ""}));
        break;
    case 5:
        said = Size{-frame.width, frame.height};
        break;
    default:
        break; // the read fails
    }
    window.overrides[std::string(attribute)] = said;
}

} // namespace

Screen randomScreen(Dice& dice, const std::vector<Screen>& others) {
    Size size{dice.pick({800.0, 1280.0, 1440.0, 1920.0, 2560.0, 1000.5, 640.0}),
              dice.pick({600.0, 720.0, 900.0, 1080.0, 1440.0, 801.0, 2160.0})};
    if (!others.empty() && dice.oneIn(6))
        size = dice.pick(others).frame.size();
    const Point origin = randomOrigin(dice, size, others);
    const double left = bar(dice, size.width);
    const double right = bar(dice, size.width);
    const double top = bar(dice, size.height);
    const double bottom = bar(dice, size.height);
    return {0,
            {origin.x, origin.y, size.width, size.height},
            {origin.x + left, origin.y + bottom, size.width - left - right, size.height - top - bottom}};
}

Rect randomFrame(Dice& dice, const std::vector<Screen>& screens) {
    const Size size{dice.oneIn(6) ? dice.pick({119.5, 120.0, 121.0, 80.0})
                                  : dice.between(100, 1600) + half(dice),
                    dice.oneIn(6) ? dice.pick({79.5, 80.0, 81.0}) : dice.between(80, 1200) + half(dice)};
    if (screens.empty() || dice.oneIn(12))
        return {dice.between(-9000, 9000) + 0.0, dice.between(-9000, 9000) + 0.0, size.width, size.height};
    const Rect& frame = dice.pick(screens).frame;
    const double axTop = screens.front().frame.height - frame.maxY();
    if (dice.oneIn(16)) // the centre exactly on an edge or a corner
        return {(dice.oneIn(2) ? frame.minX() : frame.maxX()) - size.width / 2,
                axTop + dice.pick({0.0, 0.5, 1.0}) * frame.height - size.height / 2, size.width, size.height};
    const int width = static_cast<int>(frame.width);
    const int height = static_cast<int>(frame.height);
    return {frame.x + dice.between(-300, width - 50) + half(dice),
            axTop + dice.between(-200, height - 50) + half(dice), size.width, size.height};
}

Rect randomlyMoved(Dice& dice, const Rect& frame) {
    Rect moved = frame;
    const double by =
        dice.oneIn(4) ? dice.between(-600, 600) : dice.pick({1.0, 3.0, -3.0, 3.5, 4.0, -4.0, 4.5, -5.0});
    switch (dice.below(5)) {
    case 0:
        moved.x += by;
        break;
    case 1:
        moved.y += by;
        break;
    case 2:
        moved.width = std::max(60.0, moved.width + by);
        break;
    case 3:
        moved.height = std::max(60.0, moved.height + by);
        break;
    default:
        moved.x += by;
        moved.y -= by;
        break;
    }
    return moved;
}

void giveRandomTraits(Dice& dice, sim::SimWindow& window) {
    const sim::SimWindow plain;
    window.minimum = plain.minimum;
    window.maximum = plain.maximum;
    window.step = plain.step;
    window.cutAtDisplayEdge = dice.oneIn(10);
    window.minimized = dice.oneIn(15);
    window.fullScreen = dice.oneIn(15);
    window.role = plain.role;
    window.subrole = dice.pick({"AXStandardWindow", "AXDialog", "AXFloatingWindow"});
    window.overrides.clear();
    window.alpha = dice.pick({1.0, 1.0, 1.0, 1.0, 0.05, 0.04});
    window.listed.reset();
    window.settlingTime = dice.oneIn(6) ? dice.pick({1ms, 50ms, 400ms}) : 0ms;
    if (dice.oneIn(4)) // needs more room than it has, often only slightly
        window.minimum = {window.axFrame.width + dice.pick({0.5, 1.0, 1.5, 2.0, 300.0}),
                          window.axFrame.height + dice.pick({0.0, 1.0, 1.5, 200.0})};
    if (dice.oneIn(8))
        window.maximum = {dice.between(200, 700) + 0.0, dice.between(150, 500) + 0.0};
    if (dice.oneIn(6))
        window.step = {dice.pick({7.0, 8.5, 13.0}), dice.pick({14.0, 1.5, 0.0})};
    if (dice.oneIn(12))
        window.role = dice.pick({"AXSheet", "AXDialog", "AXUnknown", ""});
    if (dice.oneIn(12))
        window.role.reset();
    if (dice.oneIn(10))
        window.alpha.reset();
    while (dice.oneIn(7))
        overrideOneAttribute(dice, window);
}

ListedWindow randomlyListed(Dice& dice, const sim::SimWindow& window) {
    ListedWindow listed{0, window.pid, randomlyMoved(dice, window.axFrame), window.alpha};
    switch (dice.below(9)) {
    case 0:
        listed.layer = dice.pick({-1, 3, 25});
        break;
    case 1:
        listed.layer.reset();
        break;
    case 2:
        listed.ownerPid.reset();
        break;
    case 3:
        listed.ownerPid = dice.pick({99, 101, 102, 103, 4242});
        break;
    case 4:
        listed.axBounds.reset();
        break;
    case 5: // the window's rectangle, written with a negative width
        listed.axBounds =
            Rect{window.axFrame.maxX(), window.axFrame.y, -window.axFrame.width, window.axFrame.height};
        break;
    default:
        break;
    }
    return listed;
}

sim::SimApplication randomApplication(Dice& dice) {
    sim::SimApplication application;
    if (!dice.oneIn(6))
        application.bundleIdentifier = kBundleIdentifiers.at(dice.below(kBundleIdentifiers.size()));
    application.isRegular = !dice.oneIn(6);
    application.refusesPosition = dice.oneIn(12);
    application.refusesSize = dice.oneIn(12);
    if (dice.oneIn(3))
        application.enhancedInterface = dice.oneIn(2);
    if (dice.oneIn(15))
        application.overrides["AXEnhancedUserInterface"] =
            dice.pick<std::optional<AttributeValue>>({false, true, 1.0, std::nullopt});
    if (dice.oneIn(25))
        application.overrides[std::string(dice.pick({attribute::kFocusedWindow, attribute::kWindows}))] =
            dice.pick<std::optional<AttributeValue>>({std::nullopt, true, std::string("AXWindow")});
    if (dice.oneIn(40))
        application.answerTime = sim::SimApplication::kTimeLimit;
    return application;
}

void changeSettings(Dice& dice, AppSettings& settings) {
    if (dice.oneIn(2))
        settings.zones = randomZones(dice);
    for (Zone& zone : settings.zones)
        zone.enabled = zone.enabled != dice.oneIn(15);
    if (dice.oneIn(30))
        settings.zones = Presets::pad({});
    settings.gap = dice.pick({0.0, 0.0, 8.0, 10.0, 5.0, 7.5, 1.0, 60.0, 500.0, -4.0});
    settings.margin = dice.pick({0.0, 0.0, 8.0, 5.0, 20.0, 2.5, 100.0, 700.0, -6.0});
    settings.bindings = randomBindings(dice);
    settings.rememberApps = !dice.oneIn(4);
    settings.ignoredApps.clear();
    for (const char* const identifier : kBundleIdentifiers) {
        if (dice.oneIn(8))
            settings.ignoredApps.emplace_back(identifier);
    }
    if (dice.oneIn(8))
        settings.appZones.clear();
}

} // namespace tessarel
