// SPDX-License-Identifier: MIT

#include "app/command_address.h"

#include "app/command.h"
#include "ports/command_exchange.h"

#include <cstddef>
#include <variant>

namespace tessarel {

namespace {

constexpr std::string_view kScheme = "tessarel://";
constexpr std::string_view kZone = "zone";

/// Returns the value of a hexadecimal digit.
std::optional<int> hexDigit(char digit) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    constexpr std::string_view kCapitals = "0123456789ABCDEF";
    std::size_t value = kDigits.find(digit);
    if (value == std::string_view::npos)
        value = kCapitals.find(digit);
    return value == std::string_view::npos ? std::nullopt : std::optional(static_cast<int>(value));
}

/// Returns a part of an address without percent-encoding; `std::nullopt` if the encoding is wrong or hides a
/// NUL byte.
std::optional<std::string> decoded(std::string_view part) {
    std::string text;
    for (std::size_t i = 0; i < part.size(); ++i) {
        if (part[i] != '%') {
            text += part[i];
            continue;
        }
        if (i + 2 >= part.size())
            return std::nullopt;
        const auto high = hexDigit(part[i + 1]);
        const auto low = hexDigit(part[i + 2]);
        if (!high || !low || *high + *low == 0)
            return std::nullopt;
        text += static_cast<char>(*high * 16 + *low);
        i += 2;
    }
    return text;
}

/// Returns the decoded parts of an address between the slashes; `std::nullopt` if one is wrong.
std::optional<std::vector<std::string>> partsOf(std::string_view path) {
    std::vector<std::string> parts;
    for (;;) {
        const std::size_t slash = path.find('/');
        auto part = decoded(path.substr(0, slash));
        if (!part)
            return std::nullopt;
        parts.push_back(*std::move(part));
        if (slash == std::string_view::npos)
            return parts;
        path.remove_prefix(slash + 1);
    }
}

bool isOpenToAddresses(const Command& command) {
    return std::holds_alternative<command::RunAction>(command) ||
           std::holds_alternative<command::ApplyLayout>(command) ||
           std::holds_alternative<command::SetPause>(command);
}

} // namespace

std::optional<std::vector<std::string>> commandInAddress(std::string_view address) {
    if (address.size() > kLongestCommand || !address.starts_with(kScheme) ||
        address.find_first_of("?#") != std::string_view::npos)
        return std::nullopt;
    auto words = partsOf(address.substr(kScheme.size()));
    if (!words)
        return std::nullopt;
    if (words->size() == 2 && words->front() == kZone)
        words = {{words->front() + "-" + words->back()}};
    const ParsedCommand parsed = parseCommand(*words);
    return parsed.command && isOpenToAddresses(*parsed.command) ? words : std::nullopt;
}

} // namespace tessarel
