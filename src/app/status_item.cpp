// SPDX-License-Identifier: MIT

#include "app/status_item.h"

#include "model/config.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace tessarel {

namespace {

/// Names of system symbols, in order of preference.
constexpr std::array<std::string_view, 3> kSymbols{"rectangle.3.group", "square.grid.2x2",
                                                   "rectangle.split.3x1"};
/// Shown if the system has none of the symbols.
constexpr std::string_view kInitials = "TS";

} // namespace

StatusItem::StatusItem(StatusItemPort& port, const Runtime& runtime, StatusItemPort::Delegate delegate)
    : m_port(port), m_runtime(runtime), m_item(port.create(std::move(delegate))) {
    refreshStatusIcon();
}

void StatusItem::refreshStatusIcon() {
    const bool hasSymbol = std::any_of(kSymbols.begin(), kSymbols.end(), [this](std::string_view symbol) {
        return m_port.setSymbol(symbol, Config::appName);
    });
    if (!hasSymbol)
        m_port.clearImage();
    m_port.setTitle(hasSymbol ? "" : kInitials);
    m_port.setAppearsDisabled(m_runtime.paused);
}

} // namespace tessarel
