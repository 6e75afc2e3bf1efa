// SPDX-License-Identifier: MIT

#include "web_server.h"

#include <QCoreApplication>
#include <QFile>
#include <QHostAddress>
#include <QProcess>
#include <QSslCertificate>
#include <QSslKey>
#include <QSslServer>
#include <QSslSocket>
#include <QTemporaryDir>
#include <QTimer>

#include <chrono>
#include <stdexcept>
#include <utility>

namespace tessarel::qt {

namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 60s; // far longer than any test needs
constexpr auto kTrickle = 5ms;
constexpr auto kLook = 5ms;
constexpr qsizetype kChunk = 256LL * 1024;

std::unique_ptr<QTcpServer> sslServer(const QSslConfiguration& identity) {
    auto server = std::make_unique<QSslServer>();
    server->setSslConfiguration(identity);
    return server;
}

QByteArray contents(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("cannot read " + path.toStdString());
    return file.readAll();
}

/// Returns the number of bytes that are still to be sent, encrypted or not.
qint64 unsent(const QTcpSocket& client) {
    const auto* const secure = qobject_cast<const QSslSocket*>(&client);
    return client.bytesToWrite() + (secure ? secure->encryptedBytesToWrite() : 0);
}

} // namespace

WebServer::WebServer() : m_server(std::make_unique<QTcpServer>()), m_scheme("http") {
    serve();
}

WebServer::WebServer(const QSslConfiguration& identity) : m_server(sslServer(identity)), m_scheme("https") {
    serve();
}

WebServer::~WebServer() {
    m_server->disconnect();
    for (QTcpSocket* const client : m_server->findChildren<QTcpSocket*>())
        client->disconnect();
}

std::string WebServer::url(const std::string& path) const {
    return m_scheme + "://127.0.0.1:" + std::to_string(m_server->serverPort()) + path;
}

void WebServer::serve() {
    QObject::connect(m_server.get(), &QTcpServer::pendingConnectionAvailable, m_server.get(), [this] {
        while (QTcpSocket* const client = m_server->nextPendingConnection()) {
            QObject::connect(client, &QTcpSocket::readyRead, client, [this, client] { read(*client); });
            read(*client);
        }
    });
    if (!m_server->listen(QHostAddress::LocalHost))
        throw std::runtime_error("cannot listen");
}

void WebServer::read(QTcpSocket& client) {
    QByteArray& head = m_heads[&client];
    head += client.readAll();
    if (!head.contains("\r\n\r\n"))
        return;
    requests.push_back(std::exchange(head, {}));
    const auto path = requests.back().split(' ').value(1).toStdString();
    if (const auto answer = m_answers.find(path); answer != m_answers.end())
        answer->second(client);
}

WebServer::Answer reply(const std::string& status, const std::string& body, const std::string& headers) {
    return raw("HTTP/1.1 " + status + "\r\nContent-Length: " + std::to_string(body.size()) +
               "\r\nConnection: close\r\n" + headers + "\r\n" + body);
}

WebServer::Answer redirect(const std::string& url) {
    return reply("302 Found", "", "Location: " + url + "\r\n");
}

WebServer::Answer raw(const std::string& bytes) {
    return [bytes](QTcpSocket& client) {
        client.write(bytes.data(), static_cast<qint64>(bytes.size()));
        client.disconnectFromHost();
    };
}

WebServer::Answer trickle(const std::string& start) {
    return [start](QTcpSocket& client) {
        client.write(start.data(), static_cast<qint64>(start.size()));
        auto* const timer = new QTimer(&client);
        QObject::connect(timer, &QTimer::timeout, &client, [&client] { client.write(" "); });
        timer->start(kTrickle);
    };
}

WebServer::Answer flood(qint64 size, std::shared_ptr<qint64> sent, const std::string& start,
                        const std::string& piece) {
    const QByteArray chunk =
        QByteArray::fromStdString(piece).repeated(kChunk / static_cast<qsizetype>(piece.size()));
    return [=](QTcpSocket& client) {
        client.write(start.data(), static_cast<qint64>(start.size()));
        auto* const timer = new QTimer(&client);
        QObject::connect(timer, &QTimer::timeout, &client, [&client, sent, chunk, left = size]() mutable {
            if (left <= 0 || unsent(client) > 0)
                return;
            left -= chunk.size();
            *sent += client.write(chunk);
        });
        timer->start(0);
    };
}

QSslConfiguration makeIdentity(const std::string& name) {
    const QTemporaryDir folder;
    const bool isAddress = name.find_first_not_of("0123456789.") == std::string::npos;
    const auto names = (isAddress ? "subjectAltName=IP:" : "subjectAltName=DNS:") + name;
    const int failure = QProcess::execute(
        "openssl", {"req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-noenc",
                    "-keyout", folder.filePath("key"), "-out", folder.filePath("certificate"), "-days", "2",
                    "-subj", "/CN=Test", "-addext", QString::fromStdString(names)});
    if (failure != 0)
        throw std::runtime_error("openssl cannot make a certificate");
    QSslConfiguration identity = QSslConfiguration::defaultConfiguration();
    identity.setLocalCertificate(QSslCertificate(contents(folder.filePath("certificate"))));
    identity.setPrivateKey(QSslKey(contents(folder.filePath("key")), QSsl::Ec));
    return identity;
}

bool loopUntil(const std::function<bool()>& holds) {
    bool isOver = false;
    QTimer::singleShot(kPatience, [&isOver] { isOver = true; });
    while (!holds() && !isOver)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return holds();
}

bool loopUntilOutside(const std::function<bool()>& holds) {
    QTimer look;
    look.start(kLook);
    return loopUntil(holds);
}

bool loopUntilNoChild() {
    const QString process = QString::number(QCoreApplication::applicationPid());
    return loopUntilOutside(
        [file = "/proc/" + process + "/task/" + process + "/children"] { return contents(file).isEmpty(); });
}

} // namespace tessarel::qt
