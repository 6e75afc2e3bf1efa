// SPDX-License-Identifier: MIT

#pragma once

#include "ports/single_instance_port.h"

#include <functional>

namespace tessarel::macos {

/// Keeps one copy of the application running in a user session: the one that started first. Copies are found
/// by their bundle identifier.
///
/// When the user opens the running application again, the system sends it an Apple event, which counts as the
/// start of another copy. Real copies exist only when the executable is started in another way, for example
/// from a terminal.
class MacSingleInstance : public SingleInstancePort {
public:
    /// Returns null when an older copy runs, after sending it a distributed notification. Outside a bundle
    /// there is no identifier, and the claim always succeeds. It is never lost.
    [[nodiscard]] SubscriptionPtr claim(std::function<void()> reopened, std::function<void()> lost) override;

    /// Returns at once: the system reports a copy that does not react to the user itself.
    [[nodiscard]] Reaction awaitReaction() override { return {}; }
};

} // namespace tessarel::macos
