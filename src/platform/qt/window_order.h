// SPDX-License-Identifier: MIT

#pragma once

#include <QWidgetList>

class QWidget;

namespace tessarel::qt {

/// Returns whether `window` is a message: a dialog beside which the other windows can be used.
bool isMessage(const QWidget* window);

/// Sorts windows in the order in which they have to be raised: messages, then ordinary windows, then modal
/// dialogs, which end up in front of the windows that they block.
void sortForRaising(QWidgetList& windows);

} // namespace tessarel::qt
