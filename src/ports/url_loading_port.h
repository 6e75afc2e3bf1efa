#pragma once

#include "model/subscription.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace tessarel {

/// A document of the web to get.
struct UrlRequest {
    std::string url;       ///< absolute, http or https
    std::string userAgent; ///< who asks; the server learns nothing else of the user and the machine
    std::chrono::milliseconds timeLimit{0}; ///< from the call until the last byte, whatever holds it up
    std::size_t largestBody = 0;            ///< in bytes

    bool operator==(const UrlRequest&) const = default;
};

/// What a server has answered.
struct UrlResponse {
    int statusCode = 0;              ///< of HTTP
    std::optional<std::string> body; ///< may be empty; none when it is larger than asked for

    bool operator==(const UrlResponse&) const = default;
};

/// Gets documents from the web.
class UrlLoadingPort {
public:
    /// Empty when no answer came: the server cannot be reached or trusted, breaks off, takes too long or
    /// leads astray.
    using Done = std::function<void(std::optional<UrlResponse>)>;

    virtual ~UrlLoadingPort() = default;

    /// Sends one GET and calls `done` once, on the main thread and after this call has returned; never once
    /// the answer has ended. Never null.
    ///
    /// Nothing is read from a cache, written to one, or kept for the next request. Certificates are checked.
    /// Up to five redirects are followed, each to http or https and none from https to http. A status that
    /// speaks of an error is an answer like any other.
    [[nodiscard]] virtual SubscriptionPtr load(const UrlRequest& request, Done done) = 0;
};

} // namespace tessarel
