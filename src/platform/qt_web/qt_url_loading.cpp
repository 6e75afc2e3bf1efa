#include "platform/qt_web/qt_url_loading.h"

#include <QByteArray>
#include <QMetaObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QUrl>
#include <QVariant>

#include <utility>

namespace tessarel::qt {

namespace {

constexpr int kMostRedirects = 5;
constexpr int kFirstErrorStatus = 400;

QNetworkRequest networkRequest(const QUrl& url, const UrlRequest& request) {
    QNetworkRequest asked(url);
    asked.setHeader(QNetworkRequest::UserAgentHeader, QByteArray::fromStdString(request.userAgent));
    asked.setRawHeader("Accept-Language", "*");        // else Qt tells the user's
    asked.setRawHeader("Accept-Encoding", "identity"); // so that what arrives is what is counted
    asked.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    asked.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    asked.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    asked.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    asked.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    asked.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    asked.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    asked.setMaximumRedirectsAllowed(kMostRedirects);
    return asked;
}

/// One request on its way, with a network of its own.
class Load : public QObject, public Subscription {
public:
    Load(const UrlRequest& request, UrlLoadingPort::Done done)
        : m_largestBody(static_cast<qsizetype>(request.largestBody)), m_done(std::move(done)) {
        connect(&m_timeLimit, &QTimer::timeout, this, [this] { finish(std::nullopt); });
        m_timeLimit.setSingleShot(true);
        m_timeLimit.setTimerType(Qt::PreciseTimer);
        m_timeLimit.start(request.timeLimit);

        const QUrl url(QString::fromStdString(request.url), QUrl::StrictMode);
        if (!url.isValid() ||
            (url.scheme() != QLatin1String("http") && url.scheme() != QLatin1String("https")))
            finish(std::nullopt);
        else
            get(networkRequest(url, request));
    }

private:
    void get(const QNetworkRequest& request) {
        m_manager = std::make_unique<QNetworkAccessManager>();
        m_reply = m_manager->get(request);
        m_reply->setReadBufferSize(m_largestBody + 1);
        connect(m_reply, &QNetworkReply::readyRead, this, [this] { read(); });
        connect(m_reply, &QNetworkReply::finished, this, [this] { replyFinished(); });
    }

    [[nodiscard]] int statusCode() const {
        return m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    }

    /// Whether the server has said all that it wanted to: to Qt an error status is a failure of its own.
    [[nodiscard]] bool isAnswered() const {
        // Qt does not notice each time that the connection broke before the announced end.
        if (m_reply->header(QNetworkRequest::ContentLengthHeader).toLongLong() > m_body.size())
            return false;
        const auto error = m_reply->error();
        return error == QNetworkReply::NoError ||
               (statusCode() >= kFirstErrorStatus && error >= QNetworkReply::ContentAccessDenied);
    }

    void read() {
        m_body += m_reply->read(m_largestBody + 1 - m_body.size());
        if (m_body.size() > m_largestBody)
            finish(UrlResponse{statusCode(), std::nullopt});
    }

    void replyFinished() {
        read();
        finish(isAnswered() ? std::optional(UrlResponse{statusCode(), m_body.toStdString()}) : std::nullopt);
    }

    /// Only the first end counts. It is told at a later turn, when no code of the network is below us.
    void finish(std::optional<UrlResponse> response) {
        if (std::exchange(m_isFinished, true))
            return;
        m_timeLimit.stop();
        if (m_reply)
            m_reply->disconnect(this);
        QMetaObject::invokeMethod(
            this, [this, response = std::move(response)] { tell(response); }, Qt::QueuedConnection);
    }

    void tell(const std::optional<UrlResponse>& response) {
        m_manager.reset();                   // what is done with the answer may take the user's time
        const auto done = std::move(m_done); // which may end us
        done(response);
    }

    qsizetype m_largestBody;
    UrlLoadingPort::Done m_done;
    QTimer m_timeLimit;
    std::unique_ptr<QNetworkAccessManager> m_manager;
    QNetworkReply* m_reply = nullptr; // the manager's
    QByteArray m_body;
    bool m_isFinished = false;
};

} // namespace

SubscriptionPtr QtUrlLoading::load(const UrlRequest& request, Done done) {
    return std::make_unique<Load>(request, std::move(done));
}

} // namespace tessarel::qt
