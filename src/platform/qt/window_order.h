#pragma once

#include <QWidgetList>

namespace tessarel::qt {

/// Sorts windows in the order in which they have to be raised: dialogs beside which the other windows can be
/// used, then ordinary windows, then modal dialogs, which end up in front of the windows that they block.
void sortForRaising(QWidgetList& windows);

} // namespace tessarel::qt
