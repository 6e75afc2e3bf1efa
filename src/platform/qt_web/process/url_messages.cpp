// SPDX-License-Identifier: MIT

#include "platform/qt_web/process/url_messages.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QLatin1String>
#include <QString>

namespace tessarel::qt {

namespace {

constexpr QLatin1String kUrl("url");
constexpr QLatin1String kUserAgent("userAgent");
constexpr QLatin1String kTimeLimit("timeLimit"); // in milliseconds
constexpr QLatin1String kLargestBody("largestBody");
constexpr QLatin1String kStatusCode("statusCode");
constexpr QLatin1String kBody("body"); // in base64, because it may have any bytes

QByteArray line(const QJsonObject& message) {
    return QJsonDocument(message).toJson(QJsonDocument::Compact) + '\n';
}

} // namespace

QByteArray encodeUrlRequest(const UrlRequest& request) {
    QJsonObject message;
    message[kUrl] = QString::fromStdString(request.url);
    message[kUserAgent] = QString::fromStdString(request.userAgent);
    message[kTimeLimit] = static_cast<qint64>(request.timeLimit.count());
    message[kLargestBody] = static_cast<qint64>(request.largestBody);
    return line(message);
}

std::optional<UrlRequest> decodeUrlRequest(const QByteArray& message) {
    const QJsonObject object = QJsonDocument::fromJson(message).object();
    const qint64 timeLimit = object[kTimeLimit].toInteger(-1);
    const qint64 largestBody = object[kLargestBody].toInteger(-1);
    if (!object[kUrl].isString() || !object[kUserAgent].isString() || timeLimit < 0 || largestBody < 0)
        return std::nullopt;
    return UrlRequest{object[kUrl].toString().toStdString(), object[kUserAgent].toString().toStdString(),
                      std::chrono::milliseconds(timeLimit), static_cast<std::size_t>(largestBody)};
}

QByteArray encodeUrlResponse(const std::optional<UrlResponse>& response) {
    QJsonObject message;
    if (response)
        message[kStatusCode] = response->statusCode;
    if (response && response->body)
        message[kBody] = QString::fromLatin1(QByteArray::fromStdString(*response->body).toBase64());
    return line(message);
}

std::optional<UrlResponse> decodeUrlResponse(const QByteArray& message) {
    const QJsonObject object = QJsonDocument::fromJson(message).object();
    const int statusCode = object[kStatusCode].toInt(-1);
    if (statusCode < 0)
        return std::nullopt;
    const QJsonValue body = object[kBody];
    if (body.isUndefined())
        return UrlResponse{statusCode, std::nullopt};
    const auto bytes =
        QByteArray::fromBase64Encoding(body.toString().toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    if (!body.isString() || !bytes)
        return std::nullopt;
    return UrlResponse{statusCode, bytes.decoded.toStdString()};
}

} // namespace tessarel::qt
