// SPDX-License-Identifier: MIT

#include "platform/sim/sim_url_loading.h"

#include "model/call_on_end.h"

#include <string_view>
#include <utility>

namespace tessarel::sim {

namespace {

/// Returns whether `url` is one that the port promises to load.
bool isOfTheWeb(std::string_view url) {
    return url.starts_with("http://") || url.starts_with("https://");
}

} // namespace

SubscriptionPtr SimUrlLoading::load(const UrlRequest& request, Done done) {
    const std::size_t position = requests.size();
    requests.push_back(request);
    m_waiting->emplace(position, std::move(done));
    if (!isOfTheWeb(request.url))
        answerLater({}, position, std::nullopt);
    else if (const auto page = pages.find(request.url); page != pages.end())
        answerLater({}, position, page->second);
    else
        answerLater(request.timeLimit, position, std::nullopt);
    return callOnEnd([waiting = m_waiting, position] { waiting->erase(position); });
}

void SimUrlLoading::answer(std::size_t position, std::optional<UrlResponse> response) {
    const auto request = m_waiting->extract(position);
    if (request.empty())
        return;
    if (response && response->body && response->body->size() > requests[position].largestBody)
        response->body.reset();
    request.mapped()(std::move(response));
}

void SimUrlLoading::answerLater(SimClock::Duration delay, std::size_t position,
                                std::optional<UrlResponse> response) {
    m_answers.push_back(m_clock.schedule(
        this, delay, [this, position, response = std::move(response)] { answer(position, response); }));
}

} // namespace tessarel::sim
