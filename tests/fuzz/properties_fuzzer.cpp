// SPDX-License-Identifier: MIT

#include "fuzz/input.h"
#include "platform/x11/displays/usable_area.h"
#include "platform/x11/server/atoms.h"
#include "platform/x11/server/property.h"
#include "platform/x11/windows/client_windows.h"
#include "platform/x11/windows/size_hints.h"
#include "platform/x11/windows/window_frame.h"
#include "platform/x11/windows/window_traits.h"
#include "platform/xdg/utf8.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

using namespace tessarel;
using namespace tessarel::x11;

namespace {

/// Takes the reply of a server to a request for a property, with values of any format: two bytes for its
/// format and whether there is more of it, a length, and the values.
PropertyReply takeReply(fuzz::Input& input) {
    constexpr std::array<std::uint8_t, 4> kFormats = {32, 32, 8, 16};
    const std::uint8_t format = kFormats[input.below(kFormats.size())];
    const bool isCut = input.below(16) == 15;
    const std::size_t unit = format / 8;
    std::string bytes = input.bytes(unit * input.byte());
    bytes.resize(bytes.size() / unit * unit);

    auto* const memory = static_cast<xcb_get_property_reply_t*>(
        std::calloc(1, sizeof(xcb_get_property_reply_t) + (bytes.size() + 3) / 4 * 4));
    PropertyReply reply(memory);
    reply->format = format;
    reply->bytes_after = isCut ? 4 : 0;
    reply->type = XCB_ATOM_WM_SIZE_HINTS;
    reply->value_len = static_cast<std::uint32_t>(bytes.size() / unit);
    reply->length = static_cast<std::uint32_t>((bytes.size() + 3) / 4);
    std::memcpy(reply.get() + 1, bytes.data(), bytes.size());
    return reply;
}

bool isInside(const Rect& area, const Rect& monitor) {
    return area.minX() >= monitor.minX() && area.maxX() <= monitor.maxX() && area.minY() >= monitor.minY() &&
           area.maxY() <= monitor.maxY();
}

/// Decodes work areas and struts for up to four monitors.
void checkReservedSpace(fuzz::Input& input) {
    std::vector<Rect> monitors(1 + input.below(4));
    for (Rect& monitor : monitors)
        monitor = {static_cast<double>(input.word()), static_cast<double>(input.word()), 1.0 + input.word(),
                   1.0 + input.word()};
    const Size root{1.0 + input.word(), 1.0 + input.word()};

    ReservedSpace reserved;
    for (std::size_t panels = input.below(4); panels > 0; --panels) {
        const auto reply = takeReply(input);
        for (const Strut& strut : strutsFrom(values(reply))) {
            fuzz::require(strut.depth >= 1 && strut.depth <= 65535 && strut.start <= strut.end,
                          "a strut reserves something");
            reserved.struts.push_back(strut);
        }
    }
    const auto perMonitor = takeReply(input);
    reserved.areaPerMonitor = rectanglesFrom(values(perMonitor));
    const auto common = takeReply(input);
    if (const auto areas = rectanglesFrom(values(common)); !areas.empty())
        reserved.commonArea = areas.front();

    const auto areas = usableAreas(monitors, root, reserved);
    fuzz::require(areas.size() == monitors.size(), "each monitor has a usable area");
    for (std::size_t i = 0; i < areas.size(); ++i)
        fuzz::require(isInside(areas[i], monitors[i]) && areas[i].width >= monitors[i].width / 4 &&
                          areas[i].height >= monitors[i].height / 4,
                      "a usable area is a large part of its monitor");
}

void checkExtents(fuzz::Input& input) {
    const Rect client{0, 0, 1.0 + input.word(), 1.0 + input.word()};
    const auto decoration = takeReply(input);
    const auto shadows = takeReply(input);
    const WindowFrame frame{
        client,
        effectiveExtents(extentsFrom(values(decoration)), extentsFrom(values(shadows)), client.size()),
        {}};
    fuzz::require(frame.outer().width >= 1 && frame.outer().height >= 1, "a frame has a size");
}

void checkSizeHints(fuzz::Input& input) {
    const auto reply = takeReply(input);
    xcb_size_hints_t raw{};
    xcb_icccm_get_wm_size_hints_from_reply(&raw, reply.get());
    const SizeHints hints = sizeHintsFrom(raw);
    const double wanted = input.word();
    for (const ExtentHints& extent : {hints.width, hints.height}) {
        fuzz::require(extent.minimum >= 1 && extent.maximum >= 1 && extent.step >= 1,
                      "limits of a size are positive");
        fuzz::require(extent.explain(std::max(extent.minimum, std::min(wanted, extent.maximum)), wanted),
                      "the limits explain the nearest possible size");
    }
}

void checkText(fuzz::Input& input) {
    const auto reply = takeReply(input);
    const auto [instance, windowClass] = classFrom(bytes(reply));
    for (const std::string& text : {instance, windowClass, xdg::toUtf8(bytes(reply))})
        fuzz::require(xdg::toUtf8(text) == text, "decoded text is UTF-8 without NUL");
}

/// Window types and states, with atoms that have the values 1, 2, 3 and so on.
void checkAtoms(fuzz::Input& input) {
    std::array<xcb_atom_t, static_cast<std::size_t>(Atom::kCount)> atoms{};
    for (std::size_t i = 0; i < atoms.size(); ++i)
        atoms[i] = static_cast<xcb_atom_t>(i + 1);
    const Atoms known(atoms);
    const auto reply = takeReply(input);
    const auto all = values(reply);
    const auto isThere = [&](Atom atom) { return std::ranges::find(all, known[atom]) != all.end(); };
    fuzz::require(typeFrom(known, all) != WindowType::Normal || isThere(Atom::NetWmWindowTypeNormal),
                  "a window has one of the types in its list");
    fuzz::require(statesFrom(known, all).shaded == isThere(Atom::NetWmStateShaded),
                  "a window has the states in its list");
}

void checkClientList(fuzz::Input& input) {
    const auto stacking = takeReply(input);
    const auto list = takeReply(input);
    auto windows = frontToBackFrom(values(stacking), values(list));
    std::ranges::sort(windows);
    fuzz::require(std::ranges::adjacent_find(windows) == windows.end() &&
                      (windows.empty() || windows.front() != XCB_WINDOW_NONE),
                  "each window is listed once");
    (void)value(list);
}

} // namespace

/// Reads which properties to decode, then their values.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::array kChecks = {checkReservedSpace, checkExtents, checkSizeHints,
                                    checkText,          checkAtoms,   checkClientList};
    fuzz::Input input(data, size);
    kChecks[input.below(kChecks.size())](input);
    return 0;
}
