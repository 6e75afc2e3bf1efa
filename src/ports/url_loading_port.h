// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace tessarel {

/// An HTTP GET request.
struct UrlRequest {
    std::string url; ///< absolute, http or https
    /// Value of the User-Agent header. The server learns nothing else about the user and the computer.
    std::string userAgent;
    std::chrono::milliseconds timeLimit{0}; ///< from the call until the last byte, including redirects
    std::size_t largestBody = 0;            ///< in bytes

    bool operator==(const UrlRequest&) const = default;
};

/// An HTTP response.
struct UrlResponse {
    int statusCode = 0; ///< HTTP status code, after redirects
    /// May be empty; `std::nullopt` if the body is larger than `UrlRequest::largestBody`.
    std::optional<std::string> body;

    bool operator==(const UrlResponse&) const = default;
};

/// Loads documents from the web.
class UrlLoadingPort {
public:
    /// Receives the response, or `std::nullopt` if there is none: the server is unreachable or not trusted,
    /// closes the connection early, exceeds the time limit, sends too large a head, or redirects too often or
    /// to a forbidden address.
    using Done = std::function<void(std::optional<UrlResponse>)>;

    virtual ~UrlLoadingPort() = default;

    /// Sends one GET request and calls `done` once, on the main thread and after this call has returned.
    /// Destroying the returned subscription cancels the request; `done` is not called then. Never returns
    /// null.
    ///
    /// Uses no cache and keeps nothing, such as cookies, for later requests. Verifies certificates. Follows
    /// up to five redirects, to http or https only and never from https to http. An HTTP error status, and a
    /// redirect without a target, count as responses.
    [[nodiscard]] virtual SubscriptionPtr load(const UrlRequest& request, Done done) = 0;
};

} // namespace tessarel
