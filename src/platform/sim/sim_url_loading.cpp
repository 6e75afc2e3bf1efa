#include "platform/sim/sim_url_loading.h"

#include "platform/sim/call_on_end.h"

#include <utility>

namespace tessarel::sim {

SubscriptionPtr SimUrlLoading::load(const UrlRequest& request, Done done) {
    const std::size_t position = requests.size();
    requests.push_back(request);
    m_waiting->emplace(position, std::move(done));
    return std::make_unique<CallOnEnd>([waiting = m_waiting, position] { waiting->erase(position); });
}

void SimUrlLoading::answer(std::size_t position, std::optional<UrlResponse> response) {
    const auto request = m_waiting->extract(position);
    if (!request.empty())
        request.mapped()(std::move(response));
}

} // namespace tessarel::sim
