// SPDX-License-Identifier: MIT

#pragma once

#include <string_view>

namespace tessarel {

/// Returns whether `text` is an absolute http or https address with a host, without spaces, control
/// characters and other ASCII characters that a URL contains only in percent-encoded form. Addresses from
/// outside the program are opened only if they pass this check.
[[nodiscard]] bool isWebAddress(std::string_view text);

} // namespace tessarel
