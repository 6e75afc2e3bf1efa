#pragma once

#include "ports/single_instance_port.h"

#include <functional>

namespace tessarel::macos {

/// One copy per user session, known by its bundle identifier: the one that started first. When the user opens
/// the program again the system does not start another but tells the running one, which counts as a copy that
/// has tried to; real ones come of a start in another way.
class MacSingleInstance : public SingleInstancePort {
public:
    [[nodiscard]] SubscriptionPtr claim(std::function<void()> reopened) override;
};

} // namespace tessarel::macos
