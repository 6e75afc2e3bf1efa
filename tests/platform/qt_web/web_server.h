// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QSslConfiguration>
#include <QTcpServer>
#include <QTcpSocket>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tessarel::qt {

/// A local web server with scripted responses.
class WebServer {
public:
    /// Called with the connection once the head of a request has arrived.
    using Answer = std::function<void(QTcpSocket&)>;

    WebServer();                                           ///< serves HTTP
    explicit WebServer(const QSslConfiguration& identity); ///< serves HTTPS
    WebServer(const WebServer&) = delete;
    WebServer& operator=(const WebServer&) = delete;
    ~WebServer();

    void at(const std::string& path, Answer answer) { m_answers[path] = std::move(answer); }
    [[nodiscard]] std::string url(const std::string& path) const;
    /// Stops listening: new connections are refused by the system.
    void close() { m_server->close(); }

    std::vector<QByteArray> requests; ///< the heads of the requests, in order

private:
    void serve();
    void read(QTcpSocket& client);

    std::unique_ptr<QTcpServer> m_server;
    std::string m_scheme;
    std::map<std::string, Answer> m_answers;
    std::map<QTcpSocket*, QByteArray> m_heads; // the incomplete heads of requests that are still arriving
};

/// Sends a complete response and closes the connection.
[[nodiscard]] WebServer::Answer reply(const std::string& status, const std::string& body,
                                      const std::string& headers = "");
[[nodiscard]] WebServer::Answer redirect(const std::string& url);
/// Sends exactly these bytes and closes the connection.
[[nodiscard]] WebServer::Answer raw(const std::string& bytes);
/// Sends `start`, then one space after another without end.
[[nodiscard]] WebServer::Answer trickle(const std::string& start);
/// Sends `start`, then `piece` again and again, at least `size` bytes in all, as fast as the client reads
/// them; `sent` counts the bytes of all clients.
[[nodiscard]] WebServer::Answer flood(qint64 size, std::shared_ptr<qint64> sent,
                                      const std::string& start = "HTTP/1.1 200 OK\r\n\r\n",
                                      const std::string& piece = " ");

/// Returns a self-signed certificate for `name`, a host name or an IPv4 address, with its key.
[[nodiscard]] QSslConfiguration makeIdentity(const std::string& name);

/// Runs the event loop until `holds` returns true. Returns false after a minute.
[[nodiscard]] bool loopUntil(const std::function<bool()>& holds);
/// Like `loopUntil`, for a condition that changes outside of this process.
[[nodiscard]] bool loopUntilOutside(const std::function<bool()>& holds);
/// Runs the event loop until every process that the main thread has started has ended and was collected.
/// Returns false after a minute.
[[nodiscard]] bool loopUntilNoChild();

} // namespace tessarel::qt
