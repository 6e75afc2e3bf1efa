// SPDX-License-Identifier: MIT

#include "platform/x11/instance/command_sender.h"

#include "platform/x11/server/display.h"
#include "platform/x11/server/event.h"
#include "platform/x11/server/reply.h"

#include <xcb/xcb.h>

#include <chrono>
#include <functional>
#include <optional>
#include <poll.h>
#include <string_view>
#include <utility>

namespace tessarel::x11 {

namespace {

using Clock = std::chrono::steady_clock;
using Event = xcb_generic_event_t;

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text.append(word.c_str()).push_back(kEndOfWord);
    return text;
}

/// One command on its way. Every function that waits gives up at the same moment.
class Sending {
public:
    Sending(xcb_connection_t* xcb, const xcb_screen_t& screen, int screenNumber)
        : m_xcb(xcb), m_root(screen.root) {
        const auto selection = requestAtom(commandSelection(screenNumber));
        const auto command = requestAtom("_TESSAREL_COMMAND");
        const auto text = requestAtom("UTF8_STRING");
        m_selection = atom(selection);
        m_command = atom(command);
        m_text = atom(text);
    }

    [[nodiscard]] SentCommand send(const std::string& words) {
        createWindow();
        xcb_change_property(m_xcb, XCB_PROP_MODE_REPLACE, m_window, m_command, m_text, 8,
                            static_cast<std::uint32_t>(words.size()), words.data());
        const auto ownerRequest = xcb_get_selection_owner(m_xcb, m_selection);
        xcb_convert_selection(m_xcb, m_window, m_selection, m_command, m_command, XCB_CURRENT_TIME);
        // The command is carried out meanwhile.
        const Reply<xcb_get_selection_owner_reply_t> owner(
            xcb_get_selection_owner_reply(m_xcb, ownerRequest, nullptr));
        if (owner && owner->owner == XCB_WINDOW_NONE)
            return {SentCommand::Outcome::NoReceiver};
        if (!owner || !awaitAnswer(owner->owner))
            return {SentCommand::Outcome::NoAnswer};
        return answer();
    }

private:
    [[nodiscard]] xcb_intern_atom_cookie_t requestAtom(std::string_view name) {
        return xcb_intern_atom(m_xcb, 0, static_cast<std::uint16_t>(name.size()), name.data());
    }

    [[nodiscard]] xcb_atom_t atom(xcb_intern_atom_cookie_t cookie) {
        const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(m_xcb, cookie, nullptr));
        return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }

    /// Creates a window that is never mapped.
    void createWindow() {
        m_window = xcb_generate_id(m_xcb);
        xcb_create_window(m_xcb, XCB_COPY_FROM_PARENT, m_window, m_root, -1, -1, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    }

    /// Waits until the receiver has answered. Returns false if it refuses, ends or takes too long.
    [[nodiscard]] bool awaitAnswer(xcb_window_t receiver) {
        const std::uint32_t itsEnd = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        const auto selected =
            xcb_change_window_attributes(m_xcb, receiver, XCB_CW_EVENT_MASK, &itsEnd).sequence;
        xcb_flush(m_xcb);
        while (const Reply<Event> event = nextEvent()) {
            constexpr std::uint8_t kError = 0;
            if (eventType(*event) == XCB_SELECTION_NOTIFY)
                return eventAs<xcb_selection_notify_event_t>(*event).property == m_command;
            if (event->response_type == XCB_DESTROY_NOTIFY ||
                (event->response_type == kError && event->full_sequence == selected))
                return false;
        }
        return false;
    }

    /// Waits for the next event. Returns null when there is none in time, or the connection is lost.
    [[nodiscard]] Reply<Event> nextEvent() {
        while (xcb_connection_has_error(m_xcb) == 0) {
            if (Reply<Event> event{xcb_poll_for_event(m_xcb)})
                return event;
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_deadline - Clock::now());
            pollfd watched{xcb_get_file_descriptor(m_xcb), POLLIN, 0};
            if (left.count() <= 0 || poll(&watched, 1, static_cast<int>(left.count())) == 0)
                break;
        }
        return nullptr;
    }

    [[nodiscard]] SentCommand answer() {
        constexpr std::uint32_t kBytesPerUnit = 4;
        const auto cookie =
            xcb_get_property(m_xcb, 0, m_window, m_command, m_text, 0, kLongestAnswer / kBytesPerUnit);
        const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(m_xcb, cookie, nullptr));
        const int length = reply && reply->format == 8 ? xcb_get_property_value_length(reply.get()) : 0;
        if (length == 0)
            return {SentCommand::Outcome::NoAnswer};
        const auto* const bytes = static_cast<const char*>(xcb_get_property_value(reply.get()));
        return {SentCommand::Outcome::Answered,
                {static_cast<std::uint8_t>(*bytes), std::string(bytes + 1, bytes + length)}};
    }

    xcb_connection_t* m_xcb;
    Clock::time_point m_deadline = Clock::now() + kCommandPatience;
    xcb_window_t m_root;
    xcb_window_t m_window = XCB_WINDOW_NONE;
    xcb_atom_t m_selection = XCB_ATOM_NONE;
    xcb_atom_t m_command = XCB_ATOM_NONE;
    xcb_atom_t m_text = XCB_ATOM_NONE;
};

} // namespace

std::string commandSelection(int screenNumber) {
    return "_TESSAREL_COMMANDS_S" + std::to_string(screenNumber);
}

SentCommand sendCommand(const char* displayName, const std::vector<std::string>& words) {
    const OpenedDisplay display = openDisplay(displayName);
    if (!display.screen)
        return {SentCommand::Outcome::NoDesktop, {.text = "cannot open the X display: " + display.failure}};
    return Sending(display.xcb.get(), *display.screen, display.screenNumber).send(joined(words));
}

} // namespace tessarel::x11
