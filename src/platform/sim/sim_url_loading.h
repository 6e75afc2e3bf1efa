#pragma once

#include "platform/sim/sim_clock.h"
#include "ports/url_loading_port.h"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::sim {

/// A web with the pages it is given. Other servers answer when told to, or let the time run out.
class SimUrlLoading : public UrlLoadingPort {
public:
    explicit SimUrlLoading(SimClock& clock) : m_clock(clock) {}
    SimUrlLoading(const SimUrlLoading&) = delete;
    SimUrlLoading& operator=(const SimUrlLoading&) = delete;
    ~SimUrlLoading() override { m_clock.cancelAll(this); }

    [[nodiscard]] SubscriptionPtr load(const UrlRequest& request, Done done) override;

    /// Answers the request at that position of `requests`; does nothing when it has been answered or ended.
    void answer(std::size_t position, std::optional<UrlResponse> response);
    /// How many requests wait for an answer.
    [[nodiscard]] std::size_t waiting() const { return m_waiting->size(); }

    std::vector<UrlRequest> requests; ///< in order
    /// What is answered at once, by address; none: there is no server.
    std::map<std::string, std::optional<UrlResponse>> pages;

private:
    void answerLater(SimClock::Duration delay, std::size_t position, std::optional<UrlResponse> response);

    using Waiting = std::map<std::size_t, Done>; // by position

    SimClock& m_clock;
    std::shared_ptr<Waiting> m_waiting = std::make_shared<Waiting>();
};

} // namespace tessarel::sim
