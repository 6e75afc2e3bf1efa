// SPDX-License-Identifier: MIT

#include "platform/sim/sim_status_item.h"

#include "model/call_on_end.h"

#include <utility>

namespace tessarel::sim {

SubscriptionPtr SimStatusItem::create(Delegate delegate) {
    m_delegate = std::move(delegate);
    return callOnEnd([this] { m_delegate.reset(); });
}

bool SimStatusItem::setSymbol(std::string_view symbolName, std::string_view description) {
    if (!isUp() || !symbols.contains(symbolName))
        return false;
    symbol = symbolName;
    accessibilityDescription = description;
    return true;
}

void SimStatusItem::clearImage() {
    if (isUp())
        symbol.clear();
}

void SimStatusItem::setTitle(std::string_view text) {
    if (isUp())
        title = text;
}

void SimStatusItem::setAppearsDisabled(bool disabled) {
    if (isUp())
        appearsDisabled = disabled;
}

} // namespace tessarel::sim
