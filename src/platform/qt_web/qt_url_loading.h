#pragma once

#include "ports/url_loading_port.h"

namespace tessarel::qt {

/// The web by Qt's network library, of which nothing is left once a request has been answered or ended.
///
/// Needs the application object, which all requests must end before. It is not to be linked into the program:
/// `QtUrlLoadingModule` brings it in with the first request.
class QtUrlLoading : public UrlLoadingPort {
public:
    [[nodiscard]] SubscriptionPtr load(const UrlRequest& request, Done done) override;
};

} // namespace tessarel::qt
