#pragma once

#include "ports/single_instance_port.h"

#include <functional>

namespace tessarel::macos {

/// One copy per user session, known by its bundle identifier. The system itself brings the running copy to
/// the front when the user opens the program again; this is for copies that are started in other ways.
class MacSingleInstance : public SingleInstancePort {
public:
    [[nodiscard]] SubscriptionPtr claim(std::function<void()> reopened) override;
};

} // namespace tessarel::macos
