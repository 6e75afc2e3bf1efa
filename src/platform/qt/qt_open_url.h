#pragma once

#include "ports/open_url_port.h"

#include <string>

namespace tessarel::qt {

/// Addresses by the desktop's own services.
class QtOpenUrl : public OpenUrlPort {
public:
    /// An address needs a scheme: a bare path is none.
    void open(const std::string& url) override;
};

} // namespace tessarel::qt
