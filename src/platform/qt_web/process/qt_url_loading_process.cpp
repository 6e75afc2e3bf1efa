// SPDX-License-Identifier: MIT

#include "platform/qt_web/process/qt_url_loading_process.h"

#include "platform/qt_web/process/ending_processes.h"
#include "platform/qt_web/process/url_messages.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QMetaObject>
#include <QObject>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QTimer>

#include <utility>

namespace tessarel::qt {

namespace {

/// Returns the path of the helper program; empty if no folder has it.
QString helperIn(const std::vector<std::string>& folders) {
    const QDir own(QCoreApplication::applicationDirPath());
    for (const std::string& folder : folders) {
        const QFileInfo file(QDir(own.filePath(QString::fromStdString(folder))),
                             QLatin1String(QtUrlLoadingProcess::kProgram));
        if (file.isFile() && file.isExecutable())
            return file.absoluteFilePath();
    }
    return {};
}

/// Returns the variables of the environment that concern the network or the libraries.
QProcessEnvironment helperEnvironment() {
    const QProcessEnvironment own = QProcessEnvironment::systemEnvironment();
    QProcessEnvironment passed;
    passed.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8")); // otherwise Qt complains
    for (const char* name :
         {"http_proxy", "https_proxy", "all_proxy", "no_proxy", "HTTP_PROXY", "HTTPS_PROXY", "ALL_PROXY",
          "NO_PROXY", "LD_LIBRARY_PATH", "DYLD_FRAMEWORK_PATH"}) {
        if (own.contains(QLatin1String(name)))
            passed.insert(QLatin1String(name), own.value(QLatin1String(name)));
    }
    return passed;
}

/// One request in flight.
class ProcessLoad : public QObject, public Subscription {
public:
    ProcessLoad(const QString& program, const UrlRequest& request, UrlLoadingPort::Done done,
                std::shared_ptr<EndingProcesses> ending)
        : m_largestBody(request.largestBody), m_done(std::move(done)), m_ending(std::move(ending)) {
        connect(&m_timeLimit, &QTimer::timeout, this, [this] { finish(std::nullopt); });
        m_timeLimit.setSingleShot(true);
        m_timeLimit.setTimerType(Qt::PreciseTimer);
        m_timeLimit.start(request.timeLimit);
        if (program.isEmpty())
            finish(std::nullopt);
        else
            run(program, request);
    }
    ProcessLoad(const ProcessLoad&) = delete;
    ProcessLoad& operator=(const ProcessLoad&) = delete;
    ~ProcessLoad() override { endProcess(); }

private:
    void run(const QString& program, const UrlRequest& request) {
        connect(m_process.get(), &QProcess::readyReadStandardOutput, this, [this] { read(); });
        connect(m_process.get(), &QProcess::readChannelFinished, this, [this] { outputClosed(); });
        connect(m_process.get(), &QProcess::finished, this, [this] { outputClosed(); });
        connect(m_process.get(), &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart)
                finish(std::nullopt);
        });
        m_process->setProcessEnvironment(helperEnvironment());
        m_process->setWorkingDirectory(QDir::rootPath());
        m_process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process->start(program, QStringList());
        if (!m_process) // it has failed already
            return;
        m_process->write(encodeUrlRequest(request));
        m_process->closeWriteChannel();
    }

    void read() {
        if (m_process->canReadLine())
            finish(accepted(decodeUrlResponse(m_process->readLine())));
        else if (static_cast<std::size_t>(m_process->bytesAvailable()) > largestMessage())
            finish(std::nullopt);
    }

    void outputClosed() {
        read();
        finish(std::nullopt);
    }

    [[nodiscard]] std::size_t largestMessage() const {
        constexpr std::size_t kRest = 1000; // of the message, beside the body
        return m_largestBody * 2 + kRest;   // base64 needs 4/3 of the body
    }

    [[nodiscard]] std::optional<UrlResponse> accepted(std::optional<UrlResponse> response) const {
        const bool isTooLarge = response && response->body && response->body->size() > m_largestBody;
        return isTooLarge ? std::nullopt : std::move(response);
    }

    /// Ends the request; calls after the first one do nothing. `done` is called in a later iteration of the
    /// event loop, when no code of the process is on the stack.
    void finish(std::optional<UrlResponse> response) {
        if (std::exchange(m_isFinished, true))
            return;
        m_timeLimit.stop();
        endProcess();
        QMetaObject::invokeMethod(
            this,
            [this, response = std::move(response)] {
                const auto done = std::move(m_done); // the call may destroy this object
                done(response);
            },
            Qt::QueuedConnection);
    }

    void endProcess() {
        if (!m_process)
            return;
        m_process->disconnect(this);
        m_ending->add(std::move(m_process));
    }

    std::size_t m_largestBody;
    UrlLoadingPort::Done m_done;
    std::shared_ptr<EndingProcesses> m_ending;
    QTimer m_timeLimit;
    std::unique_ptr<QProcess> m_process = std::make_unique<QProcess>(); ///< null once the request has ended
    bool m_isFinished = false;
};

} // namespace

QtUrlLoadingProcess::QtUrlLoadingProcess(std::vector<std::string> folders)
    : m_folders(std::move(folders)), m_ending(std::make_shared<EndingProcesses>()) {}

SubscriptionPtr QtUrlLoadingProcess::load(const UrlRequest& request, Done done) {
    return std::make_unique<ProcessLoad>(helperIn(m_folders), request, std::move(done), m_ending);
}

} // namespace tessarel::qt
