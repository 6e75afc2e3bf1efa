#pragma once

#include "ports/main_queue_port.h"
#include "ports/url_loading_port.h"
#include "ports/wall_clock_port.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tessarel::contract {

/// The web and the time of day as one back end sees them, fresh for every case.
class ContractWeb {
public:
    ContractWeb() = default;
    ContractWeb(const ContractWeb&) = delete;
    ContractWeb& operator=(const ContractWeb&) = delete;
    virtual ~ContractWeb() = default;

    virtual UrlLoadingPort& urlLoading() = 0;
    virtual WallClockPort& wallClock() = 0;

    /// The address of a page that is answered so.
    [[nodiscard]] virtual std::string page(const UrlResponse& response) = 0;
    /// An address whose server takes the request and never answers.
    [[nodiscard]] virtual std::string silentPage() = 0;
    /// An address without a server.
    [[nodiscard]] virtual std::string nowhere() = 0;

    /// Runs the loop for `duration`, and what falls due in it.
    virtual void advance(MainQueuePort::Duration duration) = 0;
    /// Runs the loop until `holds`; false when that takes unreasonably long.
    [[nodiscard]] virtual bool runUntil(const std::function<bool()>& holds) = 0;
};

/// The web of the back end under test. Each program that runs these cases defines it once.
[[nodiscard]] std::unique_ptr<ContractWeb> makeContractWeb();

} // namespace tessarel::contract
