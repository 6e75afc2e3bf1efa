// SPDX-License-Identifier: MIT

#include "model/presets.h"

#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

namespace tessarel {
namespace {

constexpr double kThird = 100.0 / 3;
constexpr double kTwoThirds = 200.0 / 3;
/// Zone that pads a short list to nine.
constexpr Zone kFiller{false, 25, 25, 50, 50};
constexpr std::size_t kMostZones = 6;

struct Preset {
    std::string_view name;
    std::size_t count;
    std::array<Zone, kMostZones> zones;
};

constexpr Zone z(double x, double y, double w, double h) {
    return Presets::z(x, y, w, h);
}

constexpr std::array<Preset, 9> kPresets{{
    {"3 top + 2 bottom",
     5,
     {z(0, 0, kThird, 50), z(kThird, 0, kThird, 50), z(kTwoThirds, 0, kThird, 50), z(0, 50, 50, 50),
      z(50, 50, 50, 50)}},
    {"Halves", 2, {z(0, 0, 50, 100), z(50, 0, 50, 100)}},
    {"Thirds", 3, {z(0, 0, kThird, 100), z(kThird, 0, kThird, 100), z(kTwoThirds, 0, kThird, 100)}},
    {"Quarters", 4, {z(0, 0, 50, 50), z(50, 0, 50, 50), z(0, 50, 50, 50), z(50, 50, 50, 50)}},
    {"Two thirds + one third", 2, {z(0, 0, kTwoThirds, 100), z(kTwoThirds, 0, kThird, 100)}},
    {"One third + two thirds", 2, {z(0, 0, kThird, 100), z(kThird, 0, kTwoThirds, 100)}},
    {"Grid 3 x 2",
     6,
     {z(0, 0, kThird, 50), z(kThird, 0, kThird, 50), z(kTwoThirds, 0, kThird, 50), z(0, 50, kThird, 50),
      z(kThird, 50, kThird, 50), z(kTwoThirds, 50, kThird, 50)}},
    {"Main + two stacked", 3, {z(0, 0, 60, 100), z(60, 0, 40, 50), z(60, 50, 40, 50)}},
    {"Ultrawide 25 / 50 / 25", 3, {z(0, 0, 25, 100), z(25, 0, 50, 100), z(75, 0, 25, 100)}},
}};

Layout layoutOf(const Preset& preset) {
    const auto* const first = preset.zones.data();
    return {std::string(preset.name), Presets::pad(std::vector<Zone>(first, first + preset.count))};
}

} // namespace

std::vector<Zone> Presets::pad(std::vector<Zone> zones) {
    zones.resize(kZoneSlots, kFiller);
    return zones;
}

const std::vector<Layout>& Presets::all() {
    static const std::vector<Layout> layouts = [] {
        std::vector<Layout> built;
        built.reserve(kPresets.size());
        for (const Preset& preset : kPresets)
            built.push_back(layoutOf(preset));
        return built;
    }();
    return layouts;
}

const Layout* Presets::layout(int tag, const std::vector<Layout>& userLayouts) {
    const bool isUsers = tag >= kFirstUserTag;
    const std::vector<Layout>& layouts = isUsers ? userLayouts : all();
    const int index = isUsers ? tag - kFirstUserTag : tag;
    const bool exists = index >= 0 && static_cast<std::size_t>(index) < layouts.size();
    return exists ? &layouts[static_cast<std::size_t>(index)] : nullptr;
}

} // namespace tessarel
