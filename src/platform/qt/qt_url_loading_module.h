#pragma once

#include "ports/url_loading_port.h"

#include <memory>

namespace tessarel::qt {

/// The web, from a module of the program that is brought in with the first request: the network library and
/// what it needs would otherwise make every start slower and the program larger.
///
/// The module lies beside the program or in ../lib/tessarel. Without it no request is answered.
class QtUrlLoadingModule : public UrlLoadingPort {
public:
    [[nodiscard]] SubscriptionPtr load(const UrlRequest& request, Done done) override;

private:
    std::unique_ptr<UrlLoadingPort> m_module; // null before the first request
};

} // namespace tessarel::qt
