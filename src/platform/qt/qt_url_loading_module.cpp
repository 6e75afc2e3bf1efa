#include "platform/qt/qt_url_loading_module.h"

#include <QCoreApplication>
#include <QDir>
#include <QLatin1String>
#include <QLibrary>
#include <QObject>
#include <QString>
#include <QTimer>

#include <utility>

namespace tessarel::qt {

namespace {

/// A request that fails in the next iteration of the event loop.
class NoLoad : public Subscription {
public:
    explicit NoLoad(UrlLoadingPort::Done done) {
        QTimer::singleShot(0, &m_receiver, [done = std::move(done)] {
            const auto outliving = done; // the call may destroy this request, and the captured `done` with it
            outliving(std::nullopt);
        });
    }

private:
    QObject m_receiver;
};

} // namespace

QtUrlLoadingModule::QtUrlLoadingModule(std::vector<std::string> folders) : m_folders(std::move(folders)) {}

SubscriptionPtr QtUrlLoadingModule::load(const UrlRequest& request, Done done) {
    if (!m_module)
        m_module = loadModule();
    if (!m_module)
        return std::make_unique<NoLoad>(std::move(done));
    return m_module->load(request, std::move(done));
}

/// Returns null if no folder contains the module. The library is never unloaded, because requests that it
/// created may outlive this port.
std::unique_ptr<UrlLoadingPort> QtUrlLoadingModule::loadModule() const {
    using Make = UrlLoadingPort*();
    const QDir program(QCoreApplication::applicationDirPath());
    for (const std::string& folder : m_folders) {
        const QString module =
            program.filePath(QString::fromStdString(folder) + QLatin1String("/tessarel_url_loading"));
        if (const auto make = QLibrary::resolve(module, "tessarelMakeUrlLoading"))
            return std::unique_ptr<UrlLoadingPort>(reinterpret_cast<Make*>(make)());
    }
    return nullptr;
}

} // namespace tessarel::qt
