// SPDX-License-Identifier: MIT

#include "support/x_resources.h"

#include <xcb/res.h>

#include <cstdint>
#include <numeric>

namespace tessarel::bench {

namespace {

/// Returns the process at the other end of a connection, which has created the resource `client`; 0 if the
/// server does not know it.
std::uint32_t processOf(const Connection& connection, std::uint32_t client) {
    const xcb_res_client_id_spec_t wanted{client, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    const Received<xcb_res_query_client_ids_reply_t> reply(xcb_res_query_client_ids_reply(
        connection.get(), xcb_res_query_client_ids(connection.get(), 1, &wanted), nullptr));
    const auto ids =
        reply ? xcb_res_query_client_ids_ids_iterator(reply.get()) : xcb_res_client_id_value_iterator_t{};
    if (ids.rem == 0 || xcb_res_client_id_value_value_length(ids.data) == 0)
        return 0;
    return *xcb_res_client_id_value_value(ids.data);
}

void addResources(const Connection& connection, std::uint32_t client, XResources& resources) {
    const Received<xcb_res_query_client_resources_reply_t> reply(xcb_res_query_client_resources_reply(
        connection.get(), xcb_res_query_client_resources(connection.get(), client), nullptr));
    if (!reply)
        return;
    const xcb_res_type_t* const types = xcb_res_query_client_resources_types(reply.get());
    for (int i = 0; i < xcb_res_query_client_resources_types_length(reply.get()); ++i)
        resources[connection.atomName(types[i].resource_type)] += types[i].count;
}

} // namespace

XResources resourcesOf(const Connection& connection, pid_t pid) {
    XResources resources;
    const Received<xcb_res_query_clients_reply_t> reply(
        xcb_res_query_clients_reply(connection.get(), xcb_res_query_clients(connection.get()), nullptr));
    const xcb_res_client_t* const clients = reply ? xcb_res_query_clients_clients(reply.get()) : nullptr;
    for (int i = 0; reply && i < xcb_res_query_clients_clients_length(reply.get()); ++i) {
        if (processOf(connection, clients[i].resource_base) == static_cast<std::uint32_t>(pid))
            addResources(connection, clients[i].resource_base, resources);
    }
    return resources;
}

long total(const XResources& resources) {
    return std::accumulate(resources.begin(), resources.end(), 0L,
                           [](long sum, const auto& entry) { return sum + entry.second; });
}

std::string difference(const XResources& before, const XResources& after) {
    XResources change = after;
    for (const auto& [type, count] : before)
        change[type] -= count;
    std::string text;
    for (const auto& [type, count] : change) {
        if (count != 0)
            text += (text.empty() ? "" : ", ") + type + (count > 0 ? " +" : " ") + std::to_string(count);
    }
    return text;
}

} // namespace tessarel::bench
