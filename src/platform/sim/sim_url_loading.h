#pragma once

#include "ports/url_loading_port.h"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace tessarel::sim {

/// A web whose servers answer when told to.
class SimUrlLoading : public UrlLoadingPort {
public:
    [[nodiscard]] SubscriptionPtr load(const UrlRequest& request, Done done) override;

    /// Answers the request at that position of `requests`; does nothing when it has been answered or ended.
    void answer(std::size_t position, std::optional<UrlResponse> response);
    /// How many requests wait for an answer.
    [[nodiscard]] std::size_t waiting() const { return m_waiting->size(); }

    std::vector<UrlRequest> requests; ///< in order

private:
    using Waiting = std::map<std::size_t, Done>; // by position
    std::shared_ptr<Waiting> m_waiting = std::make_shared<Waiting>();
};

} // namespace tessarel::sim
