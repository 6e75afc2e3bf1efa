// SPDX-License-Identifier: MIT

#pragma once

#include "ports/url_loading_port.h"

#include <memory>
#include <string>
#include <vector>

namespace tessarel::qt {

class EndingProcesses;

/// Loads URLs by a helper program, which runs for one request and exits. So the network libraries are never
/// in this process, and nothing that a server sends is parsed here but the body.
///
/// The helper gets the request and, of the environment, only what it needs to reach the network. It is killed
/// when the request ends in any way. A request has no response if the helper is missing, crashes, sends
/// something else, or closes its output. Requires the application object.
class QtUrlLoadingProcess : public UrlLoadingPort {
public:
    /// Name of the helper program.
    static constexpr const char* kProgram = "tessarel-update-check";

    /// Looks for the helper in `folders`, in order, at each request. Relative folders start at that of the
    /// executable.
    explicit QtUrlLoadingProcess(std::vector<std::string> folders = {".", "../libexec/tessarel"});

    [[nodiscard]] SubscriptionPtr load(const UrlRequest& request, Done done) override;

private:
    std::vector<std::string> m_folders;
    std::shared_ptr<EndingProcesses> m_ending;
};

} // namespace tessarel::qt
