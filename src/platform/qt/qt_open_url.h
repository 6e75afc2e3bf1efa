// SPDX-License-Identifier: MIT

#pragma once

#include "ports/open_url_port.h"

#include <string>

namespace tessarel::qt {

/// Opens URLs with the desktop's default programs.
class QtOpenUrl : public OpenUrlPort {
public:
    /// Ignores an invalid URL and one without a scheme, such as a bare path. Also returns true if a launcher
    /// of the desktop has been started that finds no program.
    bool open(const std::string& url) override;
};

} // namespace tessarel::qt
