#pragma once

#include "ports/url_loading_port.h"

#include <memory>
#include <string>
#include <vector>

namespace tessarel::qt {

/// Loads URLs through a module that is loaded with the first request. If the program itself were linked to
/// Qt's network library, every start would be slower and the process larger.
///
/// Every request fails as long as the module cannot be found.
class QtUrlLoadingModule : public UrlLoadingPort {
public:
    /// Looks for the module in `folders`, in order. Relative folders start at that of the executable.
    explicit QtUrlLoadingModule(std::vector<std::string> folders = {".", "../lib/tessarel"});

    [[nodiscard]] SubscriptionPtr load(const UrlRequest& request, Done done) override;

private:
    [[nodiscard]] std::unique_ptr<UrlLoadingPort> loadModule() const;

    std::vector<std::string> m_folders;
    std::unique_ptr<UrlLoadingPort> m_module; ///< null until the first request, or if it cannot be loaded
};

} // namespace tessarel::qt
