// SPDX-License-Identifier: MIT

#pragma once

#include "ports/url_loading_port.h"

#include <QByteArray>

#include <optional>

namespace tessarel::qt {

// The messages between the program and the helper program that loads from the web: one JSON object each, on a
// line of its own. Unknown members are ignored, so the two may be of different versions.

[[nodiscard]] QByteArray encodeUrlRequest(const UrlRequest& request);
/// Returns `std::nullopt` for a message that is not a request.
[[nodiscard]] std::optional<UrlRequest> decodeUrlRequest(const QByteArray& message);

[[nodiscard]] QByteArray encodeUrlResponse(const std::optional<UrlResponse>& response);
/// Returns `std::nullopt` if there was no response, as for a message that is none.
[[nodiscard]] std::optional<UrlResponse> decodeUrlResponse(const QByteArray& message);

} // namespace tessarel::qt
