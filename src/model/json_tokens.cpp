// SPDX-License-Identifier: MIT

#include "model/json_tokens.h"

#include <algorithm>

namespace tessarel {
namespace {

constexpr std::string_view kSpace = " \t\r\n";
constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kWord = "0123456789+-.abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";

/// Returns the length of the string at the start of `text`, with its quotes. Unfinished strings extend to the
/// end.
std::size_t stringLength(std::string_view text) {
    std::size_t at = 1;
    while (at < text.size() && text[at] != '"')
        at += text[at] == '\\' ? 2U : 1U;
    return std::min(at + 1, text.size());
}

std::size_t tokenLength(std::string_view text) {
    if (text.front() == '"')
        return stringLength(text);
    const std::size_t word = std::min(text.find_first_not_of(kWord), text.size());
    return std::max<std::size_t>(word, 1);
}

/// Removes the digits at the start of `text`. Returns how many there were.
std::size_t skipDigits(std::string_view& text) {
    const std::size_t count = std::min(text.find_first_not_of(kDigits), text.size());
    text.remove_prefix(count);
    return count;
}

/// Removes the first character if it is one of `characters`. Returns whether it was.
bool skipOne(std::string_view& text, std::string_view characters) {
    if (text.empty() || characters.find(text.front()) == std::string_view::npos)
        return false;
    text.remove_prefix(1);
    return true;
}

} // namespace

std::string_view JsonTokens::next() {
    m_rest.remove_prefix(std::min(m_rest.find_first_not_of(kSpace), m_rest.size()));
    if (m_rest.empty())
        return {};
    const std::string_view token = m_rest.substr(0, tokenLength(m_rest));
    m_rest.remove_prefix(token.size());
    return token;
}

bool isJsonNumber(std::string_view token) {
    skipOne(token, "-");
    if (!skipOne(token, "0") && skipDigits(token) == 0)
        return false;
    if (skipOne(token, ".") && skipDigits(token) == 0)
        return false;
    if (skipOne(token, "eE")) {
        skipOne(token, "+-");
        if (skipDigits(token) == 0)
            return false;
    }
    return token.empty();
}

} // namespace tessarel
