#pragma once

#include "ports/url_loading_port.h"

namespace tessarel::qt {

/// Loads URLs with Qt's network library. Nothing of a request remains in memory once it has been answered or
/// cancelled.
///
/// Requires the application object; all requests must end before it does. Do not link this class into the
/// program: `QtUrlLoadingModule` loads it with the first request.
class QtUrlLoading : public UrlLoadingPort {
public:
    [[nodiscard]] SubscriptionPtr load(const UrlRequest& request, Done done) override;
};

} // namespace tessarel::qt
