// SPDX-License-Identifier: MIT

#include "engine/journal_desktop.h"

#include "model/call_on_end.h"

#include <memory>

namespace tessarel {

JournalDesktop::JournalDesktop() {
    accessibility().setWriteHandler([this](const std::string& line) { written(line); });
}

void JournalDesktop::afterWrite(int number, std::function<void(JournalDesktop&)> incident) {
    m_writesUntilIncident = number;
    m_incident = std::move(incident);
}

std::vector<std::string> JournalDesktop::takeJournal() {
    for (std::string& request : takeRequests()) {
        if (request.ends_with(" AXWindows"))
            m_journal.push_back(std::move(request));
    }
    return std::exchange(m_journal, {});
}

void JournalDesktop::written(const std::string& line) {
    m_journal.push_back(line);
    if (m_writesUntilIncident > 0 && --m_writesUntilIncident == 0)
        m_incident(*this);
}

SubscriptionPtr JournalDesktop::HotKeys::installHandler(std::function<void(std::uint32_t id)> pressed) {
    desktop.m_journal.emplace_back("install the hot-key handler");
    return desktop.hotKeys().installHandler(std::move(pressed));
}

std::vector<SubscriptionPtr>
JournalDesktop::HotKeys::registerHotKeys(std::span<const HotKeyRequest> requests) {
    std::vector<SubscriptionPtr> claims;
    for (const HotKeyRequest& request : requests) {
        SubscriptionPtr claim = std::move(desktop.hotKeys().registerHotKeys({&request, 1}).at(0));
        const std::string keys = std::to_string(request.keyCode) + "+" + std::to_string(request.mods);
        desktop.m_journal.push_back("claim " + keys + " as " + std::to_string(request.hotKey.signature) +
                                    "/" + std::to_string(request.hotKey.id) + (claim ? "" : " in vain"));
        if (!claim) {
            claims.push_back(nullptr);
            continue;
        }
        claims.push_back(
            callOnEnd([this, keys, inner = std::shared_ptr<Subscription>(std::move(claim))]() mutable {
                inner.reset();
                desktop.m_journal.push_back("release " + keys);
            }));
    }
    return claims;
}

bool JournalDesktop::Preferences::setData(std::string_view key, std::string_view bytes) {
    desktop.m_journal.push_back("save " + std::string(key) + " " + std::string(bytes));
    document = bytes;
    return true;
}

} // namespace tessarel
