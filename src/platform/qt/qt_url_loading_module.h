#pragma once

#include "ports/url_loading_port.h"

#include <memory>
#include <string>
#include <vector>

namespace tessarel::qt {

/// The web, from a module of the program that is brought in with the first request: the network library and
/// what it needs would otherwise make every start slower and the program larger.
///
/// Without the module no request is answered.
class QtUrlLoadingModule : public UrlLoadingPort {
public:
    /// The module is looked for in `folders`, in order, which are relative to the program's own.
    explicit QtUrlLoadingModule(std::vector<std::string> folders = {".", "../lib/tessarel"});

    [[nodiscard]] SubscriptionPtr load(const UrlRequest& request, Done done) override;

private:
    [[nodiscard]] std::unique_ptr<UrlLoadingPort> loadModule() const;

    std::vector<std::string> m_folders;
    std::unique_ptr<UrlLoadingPort> m_module; // null before the first request
};

} // namespace tessarel::qt
