// SPDX-License-Identifier: MIT

#pragma once

#include <string>

namespace tessarel {

/// Opens addresses, such as web pages, outside this program.
class OpenUrlPort {
public:
    virtual ~OpenUrlPort() = default;

    /// Opens `url` in the program that the user has set for such addresses. Does nothing and returns false if
    /// `url` is malformed or there is no such program.
    virtual bool open(const std::string& url) = 0;
};

} // namespace tessarel
