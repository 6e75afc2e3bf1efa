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

/// A web server on this machine that answers the way it is told to.
class WebServer {
public:
    /// What a client gets that has sent the head of its request.
    using Answer = std::function<void(QTcpSocket&)>;

    WebServer();                                           ///< by http
    explicit WebServer(const QSslConfiguration& identity); ///< by https
    WebServer(const WebServer&) = delete;
    WebServer& operator=(const WebServer&) = delete;
    ~WebServer();

    void at(const std::string& path, Answer answer) { m_answers[path] = std::move(answer); }
    [[nodiscard]] std::string url(const std::string& path) const;
    /// No client is answered from now on, not even by the machine.
    void close() { m_server->close(); }

    std::vector<QByteArray> requests; ///< their heads, in order

private:
    void serve();
    void read(QTcpSocket& client);

    std::unique_ptr<QTcpServer> m_server;
    std::string m_scheme;
    std::map<std::string, Answer> m_answers;
    std::map<QTcpSocket*, QByteArray> m_heads; // of requests that are still arriving
};

/// A whole answer, after which the connection is closed.
[[nodiscard]] WebServer::Answer reply(const std::string& status, const std::string& body,
                                      const std::string& headers = "");
[[nodiscard]] WebServer::Answer redirect(const std::string& url);
/// Exactly these bytes and the end of the connection.
[[nodiscard]] WebServer::Answer raw(const std::string& bytes);
/// `start`, and then one space after the other for ever.
[[nodiscard]] WebServer::Answer trickle(const std::string& start);
/// A body of `size` bytes or a little more, as fast as clients take it; `sent` counts the bytes for all of
/// them.
[[nodiscard]] WebServer::Answer flood(qint64 size, std::shared_ptr<qint64> sent);

/// A certificate for `name`, which may be a host or an address, signed by nobody else, and its key.
[[nodiscard]] QSslConfiguration makeIdentity(const std::string& name);

/// Runs the loop until `holds`, or not; false when that takes unreasonably long.
[[nodiscard]] bool loopUntil(const std::function<bool()>& holds);

} // namespace tessarel::qt
