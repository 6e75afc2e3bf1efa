// SPDX-License-Identifier: MIT

#pragma once

#include "platform/sim/time/sim_clock.h"
#include "ports/url_loading_port.h"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::sim {

/// A web with the pages that a test has prepared. Requests for other pages wait until the test answers them
/// or their time limit has passed. Other URLs than those of the web fail.
class SimUrlLoading : public UrlLoadingPort {
public:
    explicit SimUrlLoading(SimClock& clock) : m_clock(clock) {}
    SimUrlLoading(const SimUrlLoading&) = delete;
    SimUrlLoading& operator=(const SimUrlLoading&) = delete;
    ~SimUrlLoading() override = default;

    [[nodiscard]] SubscriptionPtr load(const UrlRequest& request, Done done) override;

    /// Answers the request at a position in `requests`. Does nothing if it has been answered or cancelled. A
    /// body that is larger than the request allows is removed from the response.
    void answer(std::size_t position, std::optional<UrlResponse> response);
    /// Returns the number of requests that have been neither answered nor cancelled.
    [[nodiscard]] std::size_t waiting() const { return m_waiting->size(); }

    std::vector<UrlRequest> requests; ///< all requests, in order
    /// Responses by URL, which arrive without delay. An empty one stands for a server that cannot be reached.
    std::map<std::string, std::optional<UrlResponse>> pages;

private:
    void answerLater(SimClock::Duration delay, std::size_t position, std::optional<UrlResponse> response);

    using Waiting = std::map<std::size_t, Done>; // by position in `requests`

    SimClock& m_clock;
    /// Shared with subscriptions, which may outlive this port.
    std::shared_ptr<Waiting> m_waiting = std::make_shared<Waiting>();
    /// Scheduled answers, which are cancelled with this port.
    std::vector<SubscriptionPtr> m_answers;
};

} // namespace tessarel::sim
