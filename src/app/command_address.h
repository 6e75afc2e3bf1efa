// SPDX-License-Identifier: MIT

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarel {

/// Returns the words of the command that an address of the program's own scheme spells: "tessarel://zone/3",
/// "tessarel://left-half", "tessarel://layout/My%20desk", "tessarel://pause/toggle". Returns `std::nullopt`
/// for anything else.
///
/// Any web page can ask the system to open an address. So there is none for quitting, nor for a list,
/// because an address has no output.
[[nodiscard]] std::optional<std::vector<std::string>> commandInAddress(std::string_view address);

} // namespace tessarel
