// SPDX-License-Identifier: MIT

#include "platform/x11/server/extensions.h"

#include "platform/x11/server/reply.h"

#include <xcb/randr.h>
#include <xcb/res.h>

#include <string_view>
#include <utility>

namespace tessarel::x11 {

namespace {

constexpr std::string_view kXwayland = "XWAYLAND"; // an empty extension that Xwayland 23.1 and later have

using Version = std::pair<std::uint32_t, std::uint32_t>;

constexpr Version kRandrWithMonitors{1, 5};       // first version with GetMonitors
constexpr Version kResourcesWithProcessIds{1, 2}; // first version with QueryClientIds

} // namespace

void Extensions::prefetch(xcb_connection_t* xcb) {
    xcb_prefetch_extension_data(xcb, &xcb_randr_id);
    xcb_prefetch_extension_data(xcb, &xcb_res_id);
}

Extensions Extensions::query(xcb_connection_t* xcb) {
    const auto* const randr = xcb_get_extension_data(xcb, &xcb_randr_id);
    const auto* const resources = xcb_get_extension_data(xcb, &xcb_res_id);
    const bool hasRandr = randr && randr->present;
    const bool hasResources = resources && resources->present;
    // All requests are sent before a reply is read: one round trip.
    xcb_randr_query_version_cookie_t randrCookie{};
    xcb_res_query_version_cookie_t resourcesCookie{};
    if (hasRandr)
        randrCookie = xcb_randr_query_version(xcb, kRandrWithMonitors.first, kRandrWithMonitors.second);
    if (hasResources)
        resourcesCookie = xcb_res_query_version(xcb, std::uint8_t{kResourcesWithProcessIds.first},
                                                std::uint8_t{kResourcesWithProcessIds.second});

    const auto xwaylandCookie =
        xcb_query_extension(xcb, static_cast<std::uint16_t>(kXwayland.size()), kXwayland.data());

    Extensions found;
    if (hasRandr) {
        const Reply<xcb_randr_query_version_reply_t> version(
            xcb_randr_query_version_reply(xcb, randrCookie, nullptr));
        found.randrMonitors =
            version && Version(version->major_version, version->minor_version) >= kRandrWithMonitors;
        found.randrFirstEvent = randr->first_event;
    }
    if (hasResources) {
        const Reply<xcb_res_query_version_reply_t> version(
            xcb_res_query_version_reply(xcb, resourcesCookie, nullptr));
        found.resourceProcessIds =
            version && Version(version->server_major, version->server_minor) >= kResourcesWithProcessIds;
    }
    const Reply<xcb_query_extension_reply_t> xwayland(
        xcb_query_extension_reply(xcb, xwaylandCookie, nullptr));
    found.isXwayland = xwayland && xwayland->present;
    return found;
}

} // namespace tessarel::x11
