// SPDX-License-Identifier: MIT

#pragma once

#include "model/settings/app_settings.h"

namespace tessarel {

/// Applies what differs between `before` and `ours` to `theirs`, and returns the result. If both sides have
/// changed the same thing since `before`, ours wins.
///
/// - Bindings and remembered zones are merged by action and by application.
/// - The user's layouts are merged by name, ignored applications by identifier. New ones come last. If a name
///   occurs twice, the whole list counts as one setting.
/// - A change of one zone is applied to that zone. A change of several zones, such as the choice of a layout,
///   replaces them all.
/// - Every other setting is replaced as a whole.
[[nodiscard]] AppSettings merged(const AppSettings& before, const AppSettings& ours, AppSettings theirs);

} // namespace tessarel
