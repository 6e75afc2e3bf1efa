// SPDX-License-Identifier: MIT

#include "platform/qt_xdg/bus_probe.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tessarel::qt {

namespace {

constexpr int kHexadecimal = 16;
constexpr std::string_view kLineEnd = "\r\n";

/// Splits the first part off `rest`, up to `separator` or the end.
std::string_view firstPart(std::string_view& rest, char separator) {
    const std::size_t end = rest.find(separator);
    const std::string_view part = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    return part;
}

/// Decodes the "%20" notation of D-Bus addresses.
std::string unescaped(std::string_view value) {
    constexpr std::size_t kDigits = 2;
    std::string result;
    while (!value.empty()) {
        unsigned char byte = 0;
        if (value.front() == '%' && value.size() > kDigits &&
            std::from_chars(&value[1], &value[1] + kDigits, byte, kHexadecimal).ec == std::errc()) {
            result += static_cast<char>(byte);
            value.remove_prefix(1 + kDigits);
        } else {
            result += value.front();
            value.remove_prefix(1);
        }
    }
    return result;
}

/// Returns the name of the socket that one entry of an address describes, with a leading null character if
/// the socket is not in the file system; empty if it is not a socket of this machine.
std::string socketName(std::string_view entry) {
    if (firstPart(entry, ':') != "unix")
        return {};
    while (!entry.empty()) {
        std::string_view value = firstPart(entry, ',');
        const std::string_view key = firstPart(value, '=');
        if (key == "path")
            return unescaped(value);
        if (key == "abstract")
            return std::string(1, '\0').append(unescaped(value));
    }
    return {};
}

/// Returns the names of the sockets that the entries of `address` describe, in their order, each with a
/// leading null character if the socket is not in the file system.
std::vector<std::string> socketNames(std::string_view address) {
    std::vector<std::string> names;
    while (!address.empty()) {
        if (std::string name = socketName(firstPart(address, ';')); !name.empty())
            names.push_back(std::move(name));
    }
    return names;
}

/// Returns a socket that is connected to `name`, or -1 with the error in `errno`: EAGAIN for a bus with a
/// full backlog.
int connectedTo(const std::string& name) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (name.empty() || name.size() >= sizeof address.sun_path) {
        errno = ENAMETOOLONG;
        return -1;
    }
    std::ranges::copy(name, std::begin(address.sun_path));
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    // The socket interface takes every kind of address as a sockaddr.
    if (socket >= 0 && ::connect(socket, reinterpret_cast<const sockaddr*>(&address), length) != 0) {
        const int error = errno;
        ::close(socket);
        errno = error;
        return -1;
    }
    return socket;
}

/// Returns the first line of the authentication, by the user id, which the bus reads from the socket.
std::string authentication() {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string line(1, '\0');
    line += "AUTH EXTERNAL ";
    for (const char digit : std::to_string(::getuid())) {
        line += kDigits[static_cast<unsigned char>(digit) / kHexadecimal];
        line += kDigits[static_cast<unsigned char>(digit) % kHexadecimal];
    }
    return line.append(kLineEnd);
}

constexpr std::size_t kAlignment = 8; // of the fields of a message header, and of the body

void pad(std::string& bytes) {
    bytes.append((kAlignment - bytes.size() % kAlignment) % kAlignment, '\0');
}

void appendWord(std::string& bytes, std::uint32_t value) {
    std::array<char, sizeof value> word{};
    std::memcpy(word.data(), &value, sizeof value);
    bytes.append(word.data(), word.size());
}

/// Appends a field of a message header; `type` is that of `value`: an object path or a string.
void appendField(std::string& fields, char code, char type, std::string_view value) {
    pad(fields);
    fields += {code, 1, type, '\0'};
    appendWord(fields, static_cast<std::uint32_t>(value.size()));
    fields.append(value).append(1, '\0');
}

constexpr char kByteOrder = std::endian::native == std::endian::little ? 'l' : 'B';
constexpr char kMethodCall = 1;
constexpr char kMethodReturn = 2;

/// Returns the message by which a client enters the bus, and without whose reply no other is allowed.
std::string hello() {
    std::string fields;
    appendField(fields, 1, 'o', "/org/freedesktop/DBus");     // path
    appendField(fields, 2, 's', "org.freedesktop.DBus");      // interface
    appendField(fields, 3, 's', "Hello");                     // member
    appendField(fields, 6, 's', "org.freedesktop.DBus");      // destination
    std::string message{kByteOrder, kMethodCall, '\0', '\1'}; // flags and version of the protocol
    appendWord(message, 0);                                   // length of the body
    appendWord(message, 1);                                   // serial
    appendWord(message, static_cast<std::uint32_t>(fields.size()));
    message += fields;
    pad(message);
    return message;
}

} // namespace

std::string peerName(int socket) {
    sockaddr_un address{};
    socklen_t length = sizeof address;
    // The socket interface takes every kind of address as a sockaddr.
    if (::getpeername(socket, reinterpret_cast<sockaddr*>(&address), &length) != 0 ||
        address.sun_family != AF_UNIX || length <= offsetof(sockaddr_un, sun_path))
        return {};
    const std::string_view path(&address.sun_path[0], length - offsetof(sockaddr_un, sun_path));
    return std::string(path.front() == '\0' ? path : path.substr(0, path.find('\0')));
}

bool BusProbe::supports(std::string_view address) {
    return !socketNames(address).empty();
}

BusProbe::BusProbe(std::string_view address) {
    m_state = State::Failed;
    for (const std::string& name : socketNames(address)) {
        m_socket = connectedTo(name);
        if (m_socket >= 0)
            break;
        if (errno == EAGAIN) { // the D-Bus library would wait here, and not try the other entries
            m_state = State::Full;
            return;
        }
    }
    if (m_socket < 0)
        return;
    m_state = State::Waiting;
    send(authentication());
}

BusProbe::~BusProbe() {
    if (m_socket >= 0)
        ::close(m_socket);
}

BusProbe::State BusProbe::proceed() {
    constexpr std::size_t kMost = 1024; // enough for any correct reply
    std::array<char, kMost> bytes{};
    while (m_state == State::Waiting) {
        const ssize_t count = ::recv(m_socket, bytes.data(), bytes.size(), 0);
        if (count < 0 && (errno == EAGAIN || errno == EINTR))
            break;
        m_received.append(bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        if (count <= 0 || m_received.size() > kMost)
            fail();
        else
            decode();
    }
    return m_state;
}

BusProbe::State BusProbe::wait(std::chrono::milliseconds patience) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (proceed() == State::Waiting) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (left <= std::chrono::milliseconds::zero())
            break;
        pollfd readable{.fd = m_socket, .events = POLLIN, .revents = 0};
        ::poll(&readable, 1, static_cast<int>(left.count()));
    }
    return m_state;
}

/// Enters the bus once it has accepted the authentication, and reads whether it has replied.
void BusProbe::decode() {
    if (!m_isAuthenticated) {
        const std::size_t end = m_received.find(kLineEnd);
        if (end == std::string::npos)
            return;
        if (!m_received.starts_with("OK "))
            return fail();
        m_received.erase(0, end + kLineEnd.size());
        m_isAuthenticated = true;
        send("BEGIN\r\n");
        send(hello());
    }
    if (m_received.size() < 2)
        return;
    // The first message on a connection is the reply to Hello. Its second byte is its type.
    if (m_received[1] == kMethodReturn)
        m_state = State::Replied;
    else
        fail();
}

void BusProbe::send(std::string_view bytes) {
    const ssize_t sent = ::send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent != static_cast<ssize_t>(bytes.size()))
        fail();
}

void BusProbe::fail() {
    m_state = State::Failed;
}

} // namespace tessarel::qt
