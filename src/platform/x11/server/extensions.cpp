#include "platform/x11/server/extensions.h"

#include "platform/x11/server/reply.h"

#include <xcb/randr.h>
#include <xcb/res.h>

#include <utility>

namespace tessarel::x11 {

namespace {

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
    // Both version requests are sent before either reply is read: one round trip.
    xcb_randr_query_version_cookie_t randrCookie{};
    xcb_res_query_version_cookie_t resourcesCookie{};
    if (hasRandr)
        randrCookie = xcb_randr_query_version(xcb, kRandrWithMonitors.first, kRandrWithMonitors.second);
    if (hasResources)
        resourcesCookie = xcb_res_query_version(xcb, std::uint8_t{kResourcesWithProcessIds.first},
                                                std::uint8_t{kResourcesWithProcessIds.second});

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
    return found;
}

} // namespace tessarel::x11
