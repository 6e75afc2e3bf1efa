// SPDX-License-Identifier: MIT

#pragma once

#include "ports/url_loading_port.h"

namespace tessarel::qt {

/// Loads URLs with Qt's network library, which keeps a head of any size until it is complete, in a thread
/// that cancelling waits for. So this is for the helper program only, which limits its memory and then just
/// exits: the program itself uses `QtUrlLoadingProcess`.
///
/// A response with more than 64 KiB of headers counts as none. One whose connection breaks within a body in
/// chunks may count as complete, because Qt does not always report that. Requires the application object; all
/// requests must end before it does.
class QtUrlLoading : public UrlLoadingPort {
public:
    [[nodiscard]] SubscriptionPtr load(const UrlRequest& request, Done done) override;
};

} // namespace tessarel::qt
