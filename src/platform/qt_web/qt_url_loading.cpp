// SPDX-License-Identifier: MIT

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

#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace tessarel::qt {

namespace {

constexpr int kMostRedirects = 5;
constexpr qsizetype kLargestHead = 64LL * 1024; ///< names and values of the headers, in bytes
/// HTTP statuses from here on are errors to Qt.
constexpr int kFirstErrorStatus = 400;

bool isLoadable(const QUrl& url) {
    return url.isValid() && (url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https"));
}

bool isRedirect(int status) {
    return (status >= 301 && status <= 303) || status == 307 || status == 308;
}

qsizetype headSize(const QNetworkReply& reply) {
    qsizetype size = 0;
    for (const auto& [name, value] : reply.rawHeaderPairs())
        size += name.size() + value.size();
    return size;
}

/// Returns a GET request that tells the server nothing about the user but the user agent, and that leaves no
/// trace: no cache, no cookies, no stored credentials.
QNetworkRequest networkRequest(const QUrl& url, const std::string& userAgent) {
    QNetworkRequest asked(url);
    asked.setHeader(QNetworkRequest::UserAgentHeader, QByteArray::fromStdString(userAgent));
    asked.setRawHeader("Accept-Language", "*"); // by default Qt sends the user's language
    // Without compression, so that the size limit applies to the bytes that arrive.
    asked.setRawHeader("Accept-Encoding", "identity");
    asked.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    asked.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    asked.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    asked.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    asked.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    asked.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    // Qt takes a redirect without a target for a failure; here it is a response.
    asked.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    return asked;
}

/// One request in flight, with its redirects. Each has its own network access manager, which shares nothing
/// with other requests.
class Load : public QObject, public Subscription {
public:
    Load(const UrlRequest& request, UrlLoadingPort::Done done)
        : m_userAgent(request.userAgent), m_largestBody(static_cast<qsizetype>(request.largestBody)),
          m_done(std::move(done)), m_url(QString::fromStdString(request.url), QUrl::StrictMode) {
        connect(&m_timeLimit, &QTimer::timeout, this, [this] { finish(std::nullopt); });
        m_timeLimit.setSingleShot(true);
        m_timeLimit.setTimerType(Qt::PreciseTimer);
        m_timeLimit.start(request.timeLimit);

        if (isLoadable(m_url))
            get();
        else
            finish(std::nullopt);
    }

private:
    void get() {
        m_manager = std::make_unique<QNetworkAccessManager>();
        m_reply = m_manager->get(networkRequest(m_url, m_userAgent));
        m_reply->setReadBufferSize(m_largestBody + 1); // one byte more shows that the body is too large
        connect(m_reply, &QNetworkReply::metaDataChanged, this, [this] { readHead(); });
        connect(m_reply, &QNetworkReply::readyRead, this, [this] { read(); });
        connect(m_reply, &QNetworkReply::finished, this, [this] { replyFinished(); });
    }

    [[nodiscard]] int statusCode() const {
        return m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    }

    /// Returns whether the whole response has arrived. Qt reports HTTP error statuses as network errors, but
    /// here they are responses.
    [[nodiscard]] bool isAnswered() const {
        // Qt does not always report that the connection broke before the announced end of the body.
        if (m_reply->header(QNetworkRequest::ContentLengthHeader).toLongLong() > m_body.size())
            return false;
        // Codes below ContentAccessDenied stand for a failed connection, not for a status, except that of the
        // status 407.
        const auto error = m_reply->error();
        return error == QNetworkReply::NoError ||
               (statusCode() >= kFirstErrorStatus &&
                (error >= QNetworkReply::ContentAccessDenied ||
                 error == QNetworkReply::ProxyAuthenticationRequiredError));
    }

    void readHead() {
        if (headSize(*m_reply) > kLargestHead)
            finish(std::nullopt);
        else if (const auto target = m_reply->rawHeader("Location");
                 isRedirect(statusCode()) && !target.isEmpty())
            redirect(m_url.resolved(QUrl::fromEncoded(target)));
    }

    void redirect(const QUrl& target) {
        const bool isLessSafe =
            m_url.scheme() == QLatin1String("https") && target.scheme() != QLatin1String("https");
        if (!isLoadable(target) || isLessSafe || m_redirects == kMostRedirects) {
            finish(std::nullopt);
            return;
        }
        ++m_redirects;
        m_url = target;
        m_reply->disconnect(this);
        QMetaObject::invokeMethod( // code of the reply is on the stack
            this, [this] { get(); }, Qt::QueuedConnection);
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

    /// Ends the request; calls after the first one do nothing. `done` is called in a later iteration of the
    /// event loop, when no code of the network library is on the stack.
    void finish(std::optional<UrlResponse> response) {
        if (std::exchange(m_isFinished, true))
            return;
        m_timeLimit.stop();
        if (m_reply)
            m_reply->disconnect(this);
        QMetaObject::invokeMethod(
            this,
            [this, response = std::move(response)] {
                const auto done = std::move(m_done); // the call may destroy this object
                done(response);
            },
            Qt::QueuedConnection);
    }

    std::string m_userAgent;
    qsizetype m_largestBody;
    UrlLoadingPort::Done m_done;
    QUrl m_url;
    int m_redirects = 0;
    QTimer m_timeLimit;
    std::unique_ptr<QNetworkAccessManager> m_manager;
    QNetworkReply* m_reply = nullptr; // owned by m_manager
    QByteArray m_body;
    bool m_isFinished = false;
};

} // namespace

SubscriptionPtr QtUrlLoading::load(const UrlRequest& request, Done done) {
    return std::make_unique<Load>(request, std::move(done));
}

} // namespace tessarel::qt
