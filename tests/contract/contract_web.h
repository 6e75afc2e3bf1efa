// SPDX-License-Identifier: MIT

#pragma once

#include "ports/main_queue_port.h"
#include "ports/url_loading_port.h"
#include "ports/wall_clock_port.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tessarel::contract {

/// The web and the wall clock of the back end under test, new for every test.
class ContractWeb {
public:
    ContractWeb() = default;
    ContractWeb(const ContractWeb&) = delete;
    ContractWeb& operator=(const ContractWeb&) = delete;
    virtual ~ContractWeb() = default;

    virtual UrlLoadingPort& urlLoading() = 0;
    virtual WallClockPort& wallClock() = 0;

    /// Returns the URL of a new page that the server serves with `response`.
    [[nodiscard]] virtual std::string page(const UrlResponse& response) = 0;
    /// Returns a URL whose server accepts the request and never responds.
    [[nodiscard]] virtual std::string silentPage() = 0;
    /// Returns a URL at which no server listens.
    [[nodiscard]] virtual std::string nowhere() = 0;

    /// Runs the loop for `duration`, with the work that becomes due.
    virtual void advance(MainQueuePort::Duration duration) = 0;
    /// Runs the loop until `holds` returns true. Returns false on timeout.
    [[nodiscard]] virtual bool runUntil(const std::function<bool()>& holds) = 0;
};

/// Returns the web of the back end under test. Every test program that links these tests defines it.
[[nodiscard]] std::unique_ptr<ContractWeb> makeContractWeb();

} // namespace tessarel::contract
