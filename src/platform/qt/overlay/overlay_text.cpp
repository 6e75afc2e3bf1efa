// SPDX-License-Identifier: MIT

#include "platform/qt/overlay/overlay_text.h"

#include <QFontDatabase>

#include <algorithm>

namespace tessarel::qt {

QFont labelFont(const OverlayLabel& label, double scale) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPixelSize(std::max(1, qRound(label.fontSize * scale)));
    font.setWeight(static_cast<QFont::Weight>(label.fontWeight));
    return font;
}

} // namespace tessarel::qt
