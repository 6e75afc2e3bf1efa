#pragma once

#include <string_view>

namespace tessarel {

/// Whether `text` is an absolute http or https address with a host, and without a character that addresses
/// only have in an encoded form. Nothing else that comes from outside is handed on to be opened.
[[nodiscard]] bool isWebAddress(std::string_view text);

} // namespace tessarel
