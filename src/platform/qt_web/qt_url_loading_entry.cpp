#include "platform/qt_web/qt_url_loading.h"

#include <QtGlobal>

/// Returns a new port that the caller owns. `QtUrlLoadingModule` looks this function up by its name.
extern "C" Q_DECL_EXPORT tessarel::UrlLoadingPort* tessarelMakeUrlLoading() {
    return new tessarel::qt::QtUrlLoading;
}
