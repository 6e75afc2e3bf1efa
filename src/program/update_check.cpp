// SPDX-License-Identifier: MIT

// The helper program of the update check: the only one that is linked to the network libraries. The program
// starts it for each check; see `qt::QtUrlLoadingProcess`.
#include "platform/qt_web/url_service.h"

#include <QCoreApplication>

int main(int argumentCount, char** arguments) {
    const QCoreApplication application(argumentCount, arguments);
    tessarel::qt::serveUrlRequest();
}
