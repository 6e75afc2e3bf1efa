#include "platform/sim/sim_services.h"

#include <utility>

namespace tessarel::sim {

std::size_t SimAlerts::runModal(const Alert& alert) {
    shown.push_back(alert);
    if (whileShown)
        whileShown();
    // Without an answer the alert is closed in another way than by a button.
    const std::size_t last = alert.buttons.empty() ? 0 : alert.buttons.size() - 1;
    if (answers.empty())
        return alert.dismissedAs.value_or(last);
    const std::size_t answer = answers.front();
    answers.pop_front();
    return answer;
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
