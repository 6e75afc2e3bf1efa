// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>

#include <functional>
#include <string>

namespace tessarel::qt {

/// Receives the addresses that the system asks this program to open, on systems where it does so by an event.
/// Qt handles that event from the very start of the application object, so an address that has launched the
/// program arrives, too.
class RequestedAddresses : public QObject {
public:
    /// Calls `requested` with each address, in its encoded form, until this object is destroyed. Files are
    /// ignored. The application object must exist, and outlive this one.
    explicit RequestedAddresses(std::function<void(const std::string& address)> requested);

    bool eventFilter(QObject* object, QEvent* event) override;

private:
    std::function<void(const std::string&)> m_requested;
};

} // namespace tessarel::qt
