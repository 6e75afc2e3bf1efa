// SPDX-License-Identifier: MIT

// The minimal program that follows the pointer everywhere: it reads the raw events for button presses, button
// releases and motion, and queries the pointer once per batch of events.
//
//   raw_pointer_client
//
// Prints "listening" once the events are selected. Runs until it is killed.

#include "support/connection.h"

#include <xcb/xinput.h>

#include <cstdint>
#include <cstdio>
#include <exception>

namespace tessarel::bench {

namespace {

void listen(const Connection& connection) {
    const Received<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
        connection.get(), xcb_input_xi_query_version(connection.get(), 2, 2), nullptr));
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } const wanted{{XCB_INPUT_DEVICE_ALL_MASTER, 1},
                   XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE |
                       XCB_INPUT_XI_EVENT_MASK_RAW_MOTION};
    xcb_input_xi_select_events(connection.get(), connection.root(), 1, &wanted.head);
    connection.roundTrip();
}

void follow(const Connection& connection) {
    while (const Received<xcb_generic_event_t> first{xcb_wait_for_event(connection.get())}) {
        while (const Received<xcb_generic_event_t> next{xcb_poll_for_event(connection.get())}) {
        }
        const Received<xcb_query_pointer_reply_t> pointer(xcb_query_pointer_reply(
            connection.get(), xcb_query_pointer(connection.get(), connection.root()), nullptr));
    }
}

} // namespace

} // namespace tessarel::bench

int main() {
    try {
        const tessarel::bench::Connection connection;
        tessarel::bench::listen(connection);
        std::puts("listening");
        std::fflush(stdout);
        tessarel::bench::follow(connection);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "raw_pointer_client: %s\n", error.what());
        return 1;
    }
}
