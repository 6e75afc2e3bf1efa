// SPDX-License-Identifier: MIT

#pragma once

#include <memory>

namespace tessarel {

/// Tells code whether the object that has this member still exists: after a call that may have destroyed the
/// object, or in a callback that may outlive it.
///
///     const auto alive = m_lifetime.watch();
///     callback();
///     if (alive.expired())
///         return;
class Lifetime {
public:
    /// Expires when the object is destroyed.
    using Watch = std::weak_ptr<const void>;

    /// Returns a watch, which does not keep the object alive.
    [[nodiscard]] Watch watch() const { return m_token; }

private:
    std::shared_ptr<const void> m_token = std::make_shared<char>();
};

} // namespace tessarel
