// SPDX-License-Identifier: MIT

#include "model/web_address.h"

#include <algorithm>

namespace tessarel {
namespace {

/// Printable ASCII characters that a URL contains only in percent-encoded form.
constexpr std::string_view kNotInAnAddress = "\"<>\\^`{|}";

bool isMisplaced(char c) {
    const bool isControlOrSpace = static_cast<unsigned char>(c) <= 0x20 || c == 0x7F;
    return isControlOrSpace || kNotInAnAddress.find(c) != std::string_view::npos;
}

bool startsWithScheme(std::string_view text, std::string_view lowerCaseScheme) {
    return text.size() >= lowerCaseScheme.size() &&
           std::equal(lowerCaseScheme.begin(), lowerCaseScheme.end(), text.begin(),
                      [](char expected, char c) {
                          return expected == c || (c >= 'A' && c <= 'Z' && expected == c + ('a' - 'A'));
                      });
}

/// Returns whether the authority has a host, not just user information and a port.
bool hasHost(std::string_view afterScheme) {
    std::string_view authority = afterScheme.substr(0, afterScheme.find_first_of("/?#"));
    if (const auto at = authority.rfind('@'); at != std::string_view::npos)
        authority.remove_prefix(at + 1);
    return !authority.empty() && !authority.starts_with(':');
}

} // namespace

bool isWebAddress(std::string_view text) {
    if (std::ranges::any_of(text, isMisplaced))
        return false;
    for (const std::string_view scheme : {"http://", "https://"}) {
        if (startsWithScheme(text, scheme))
            return hasHost(text.substr(scheme.size()));
    }
    return false;
}

} // namespace tessarel
