#include "platform/qt_web/qt_url_loading.h"

#include <QtGlobal>

/// Where `QtUrlLoadingModule` enters the module: a new port, the caller's.
extern "C" Q_DECL_EXPORT tessarel::UrlLoadingPort* tessarelMakeUrlLoading() {
    return new tessarel::qt::QtUrlLoading;
}
