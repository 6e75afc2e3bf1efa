// SPDX-License-Identifier: MIT

#include "platform/qt/qt_open_url.h"

#include <QDesktopServices>
#include <QString>
#include <QUrl>

namespace tessarel::qt {

bool QtOpenUrl::open(const std::string& url) {
    const QUrl address(QString::fromStdString(url), QUrl::StrictMode);
    if (!address.isValid() || address.scheme().isEmpty())
        return false;
    return QDesktopServices::openUrl(address);
}

} // namespace tessarel::qt
