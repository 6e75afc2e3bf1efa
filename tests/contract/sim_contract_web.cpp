// SPDX-License-Identifier: MIT

#include "contract/contract_web.h"
#include "platform/sim/sim_desktop.h"

namespace tessarel::contract {

namespace {

/// The simulated web.
class SimContractWeb : public ContractWeb {
public:
    UrlLoadingPort& urlLoading() override { return m_desktop.urlLoading(); }
    WallClockPort& wallClock() override { return m_desktop.wallClock(); }

    std::string page(const UrlResponse& response) override { return add(response); }
    std::string silentPage() override { return "https://silent.example/"; }
    std::string nowhere() override { return add(std::nullopt); }

    void advance(MainQueuePort::Duration duration) override { m_desktop.advance(duration); }
    bool runUntil(const std::function<bool()>& holds) override {
        constexpr std::chrono::seconds kPatience{20};
        m_desktop.advance(kPatience);
        return holds();
    }

private:
    std::string add(const std::optional<UrlResponse>& response) {
        auto& pages = m_desktop.urlLoading().pages;
        const std::string url = "https://web.example/" + std::to_string(pages.size());
        pages[url] = response;
        return url;
    }

    sim::SimDesktop m_desktop;
};

} // namespace

std::unique_ptr<ContractWeb> makeContractWeb() {
    return std::make_unique<SimContractWeb>();
}

} // namespace tessarel::contract
