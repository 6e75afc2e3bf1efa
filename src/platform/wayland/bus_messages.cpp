// SPDX-License-Identifier: MIT

#include "platform/wayland/bus_messages.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>
#include <variant>

namespace tessarel::wayland {

namespace {

std::string text(const char* maybe) {
    return maybe != nullptr ? maybe : "";
}

bool appendInteger(sd_bus_message* message, char type, std::int64_t value) {
    const auto number = static_cast<std::int32_t>(value);
    return sd_bus_message_append_basic(message, type, &number) >= 0;
}

bool appendBasic(sd_bus_message* message, char type, const BusValue& value) {
    if (const auto* const string = std::get_if<std::string>(&value))
        return type == 's' && sd_bus_message_append_basic(message, type, string->c_str()) >= 0;
    const auto* const integer = std::get_if<std::int64_t>(&value);
    return integer != nullptr && (type == 'i' || type == 'u' || type == 'b') &&
           appendInteger(message, type, *integer);
}

/// Appends a list whose elements have the type `type`.
bool appendList(sd_bus_message* message, char type, const BusValue& value) {
    const std::string contents(1, type);
    if (sd_bus_message_open_container(message, SD_BUS_TYPE_ARRAY, contents.c_str()) < 0)
        return false;
    bool isWhole = true;
    if (const auto* const strings = std::get_if<std::vector<std::string>>(&value)) {
        for (const std::string& string : *strings)
            isWhole = isWhole && appendBasic(message, type, string);
    } else if (const auto* const integers = std::get_if<std::vector<std::int64_t>>(&value)) {
        for (const std::int64_t integer : *integers)
            isWhole = isWhole && appendBasic(message, type, integer);
    } else {
        isWhole = false;
    }
    return sd_bus_message_close_container(message) >= 0 && isWhole;
}

template <typename Number>
std::optional<BusValue> readNumber(sd_bus_message* message, char type) {
    Number number{};
    if (sd_bus_message_read_basic(message, type, &number) <= 0)
        return {};
    return static_cast<std::int64_t>(number);
}

std::optional<BusValue> readBasic(sd_bus_message* message, char type) {
    switch (type) {
    case 's':
    case 'o': {
        const char* string = nullptr;
        if (sd_bus_message_read_basic(message, type, &string) <= 0)
            return {};
        return text(string);
    }
    case 'b':
        return readNumber<int>(message, type);
    case 'i':
        return readNumber<std::int32_t>(message, type);
    case 'u':
        return readNumber<std::uint32_t>(message, type);
    case 'x':
        return readNumber<std::int64_t>(message, type);
    case 't':
        return readNumber<std::uint64_t>(message, type);
    default:
        return {};
    }
}

template <typename Value>
std::vector<Value> readElements(sd_bus_message* message, char type) {
    std::vector<Value> values;
    while (auto value = readBasic(message, type))
        values.push_back(std::get<Value>(std::move(*value)));
    return values;
}

std::optional<BusValue> readList(sd_bus_message* message, std::string_view contents) {
    const bool hasStrings = contents == "s" || contents == "o";
    const bool hasIntegers = contents == "i" || contents == "u";
    if ((!hasStrings && !hasIntegers) ||
        sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, contents.data()) <= 0)
        return {};
    std::optional<BusValue> list;
    if (hasStrings)
        list = readElements<std::string>(message, contents.front());
    else
        list = readElements<std::int64_t>(message, contents.front());
    sd_bus_message_exit_container(message);
    return list;
}

std::optional<BusValue> readValue(sd_bus_message* message, char type, const char* contents) {
    return type == SD_BUS_TYPE_ARRAY ? readList(message, text(contents)) : readBasic(message, type);
}

/// Reads a variant as the value in it.
std::optional<BusValue> readVariant(sd_bus_message* message, const char* contents) {
    if (sd_bus_message_enter_container(message, SD_BUS_TYPE_VARIANT, contents) <= 0)
        return {};
    char type = 0;
    const char* elements = nullptr;
    std::optional<BusValue> value;
    if (sd_bus_message_peek_type(message, &type, &elements) > 0)
        value = readValue(message, type, elements);
    if (!value)
        sd_bus_message_skip(message, nullptr);
    sd_bus_message_exit_container(message);
    return value;
}

} // namespace

bool append(sd_bus_message* message, const std::string& signature, const std::vector<BusValue>& values) {
    auto value = values.begin();
    for (std::size_t at = 0; at < signature.size(); ++at, ++value) {
        if (value == values.end())
            return false;
        const bool isList = signature[at] == 'a' && at + 1 < signature.size();
        const bool isAppended = isList ? appendList(message, signature[++at], *value)
                                       : appendBasic(message, signature[at], *value);
        if (!isAppended)
            return false;
    }
    return true;
}

BusMessage decode(sd_bus_message* message) {
    BusMessage decoded;
    decoded.sender = text(sd_bus_message_get_sender(message));
    decoded.member = text(sd_bus_message_get_member(message));
    if (const sd_bus_error* const error = sd_bus_message_get_error(message)) {
        decoded.error = text(error->name);
        return decoded;
    }
    char type = 0;
    const char* contents = nullptr;
    while (sd_bus_message_peek_type(message, &type, &contents) > 0) {
        auto value =
            type == SD_BUS_TYPE_VARIANT ? readVariant(message, contents) : readValue(message, type, contents);
        if (value)
            decoded.values.push_back(std::move(*value));
        else if (sd_bus_message_skip(message, nullptr) < 0)
            break;
    }
    return decoded;
}

} // namespace tessarel::wayland
