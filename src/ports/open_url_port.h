#pragma once

#include <string>

namespace tessarel {

/// Opens an address in the program that the user has chosen for it.
class OpenUrlPort {
public:
    virtual ~OpenUrlPort() = default;

    /// Does nothing when `url` is no address or nobody opens it.
    virtual void open(const std::string& url) = 0;
};

} // namespace tessarel
