// SPDX-License-Identifier: MIT

#include "platform/sim/sim_services.h"

#include "model/call_on_end.h"

#include <iterator>
#include <utility>

namespace tessarel::sim {

SimAlerts::SimAlerts() : m_open(std::make_shared<std::map<int, Open>>()) {}

SubscriptionPtr SimAlerts::show(const Alert& alert, Closed closed) {
    shown.push_back(alert);
    const int number = ++m_lastNumber;
    m_open->emplace(number, Open{alert, std::move(closed)});
    return callOnEnd([open = m_open, number] { open->erase(number); });
}

bool SimAlerts::close(std::optional<std::size_t> button) {
    if (m_open->empty())
        return false;
    const auto last = m_open->extract(std::prev(m_open->end()));
    last.mapped().closed(button);
    return true;
}

std::vector<Alert> SimAlerts::standing() const {
    std::vector<Alert> alerts;
    for (const auto& [number, open] : *m_open)
        alerts.push_back(open.alert);
    return alerts;
}

void SimAlerts::runModal(const Alert& alert) {
    shown.push_back(alert);
    if (whileShown)
        whileShown();
}

std::optional<std::string> SimAlerts::runModalForText(const Alert& alert) {
    shown.push_back(alert);
    if (whileShown)
        whileShown();
    if (texts.empty())
        return std::nullopt;
    std::string text = std::move(texts.front());
    texts.pop_front();
    return text;
}

std::optional<std::string> SimOpenPanel::chooseApplication(const std::string& prompt) {
    prompts.push_back(prompt);
    if (choices.empty())
        return std::nullopt;
    auto choice = std::move(choices.front());
    choices.pop_front();
    return choice;
}

} // namespace tessarel::sim
