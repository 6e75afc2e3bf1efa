#include "platform/x11/property.h"

#include "platform/x11/event.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tessarel::x11 {

namespace {

constexpr std::uint8_t kWords = 32;
constexpr std::uint8_t kBytes = 8;
constexpr std::uint32_t kMostWindows = 0x10000;

bool isWhole(const PropertyReply& reply, std::uint8_t format) {
    return reply && reply->format == format && reply->bytes_after == 0;
}

struct Utf8Form {
    unsigned leadMask;
    unsigned lead;
    std::size_t continuations;
    unsigned least; // code points below have a shorter form
};

constexpr std::array kUtf8Forms = {
    Utf8Form{0x80, 0x00, 0, 0x0},
    Utf8Form{0xE0, 0xC0, 1, 0x80},
    Utf8Form{0xF0, 0xE0, 2, 0x800},
    Utf8Form{0xF8, 0xF0, 3, 0x10000},
};

unsigned byteAt(const std::string& text, std::size_t position) {
    return static_cast<unsigned char>(text[position]);
}

/// Length of the well-formed character at `position`; 0 when there is none.
std::size_t characterLength(const std::string& text, std::size_t position) {
    const unsigned first = byteAt(text, position);
    const auto form = std::find_if(kUtf8Forms.begin(), kUtf8Forms.end(), [&](const Utf8Form& candidate) {
        return (first & candidate.leadMask) == candidate.lead;
    });
    if (form == kUtf8Forms.end() || position + form->continuations >= text.size())
        return 0;
    unsigned codePoint = first & ~form->leadMask;
    for (std::size_t i = 1; i <= form->continuations; ++i) {
        const unsigned next = byteAt(text, position + i);
        if ((next & 0xC0) != 0x80)
            return 0;
        codePoint = codePoint << 6 | (next & 0x3F);
    }
    const bool isSurrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    return codePoint < form->least || codePoint > 0x10FFFF || isSurrogate ? 0 : form->continuations + 1;
}

bool isUtf8(const std::string& text) {
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t length = characterLength(text, position);
        if (length == 0)
            return false;
        position += length;
    }
    return true;
}

std::string latin1ToUtf8(const std::string& text) {
    std::string utf8;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const unsigned character = byteAt(text, i);
        if (character < 0x80) {
            utf8 += static_cast<char>(character);
        } else {
            utf8 += static_cast<char>(0xC0 | character >> 6);
            utf8 += static_cast<char>(0x80 | (character & 0x3F));
        }
    }
    return utf8;
}

} // namespace

xcb_get_property_cookie_t requestProperty(Connection& connection, xcb_window_t window, xcb_atom_t property,
                                          xcb_atom_t type, std::uint32_t maximum) {
    return xcb_get_property(connection.xcb(), 0, window, property, type, 0, maximum);
}

xcb_get_property_cookie_t requestWindowList(Connection& connection, Atom list) {
    return requestProperty(connection, connection.root(), connection.atom(list), XCB_ATOM_WINDOW,
                           kMostWindows);
}

PropertyReply propertyReply(Connection& connection, xcb_get_property_cookie_t cookie) {
    return connection.reply<xcb_get_property_reply>(cookie);
}

std::span<const std::uint32_t> values(const PropertyReply& reply) {
    if (!isWhole(reply, kWords))
        return {};
    return {static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get())), reply->value_len};
}

std::optional<std::uint32_t> value(const PropertyReply& reply) {
    const auto all = values(reply);
    return all.size() == 1 ? std::optional(all.front()) : std::nullopt;
}

std::string bytes(const PropertyReply& reply) {
    if (!isWhole(reply, kBytes))
        return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())), reply->value_len};
}

std::string toUtf8(const std::string& text) {
    const std::string untilNul = text.substr(0, text.find('\0'));
    return isUtf8(untilNul) ? untilNul : latin1ToUtf8(untilNul);
}

std::optional<xcb_atom_t> changedProperty(const Connection::Event& event, xcb_window_t window) {
    if (eventType(event) != XCB_PROPERTY_NOTIFY)
        return std::nullopt;
    const auto& change = eventAs<xcb_property_notify_event_t>(event);
    return change.window == window ? std::optional(change.atom) : std::nullopt;
}

} // namespace tessarel::x11
