// SPDX-License-Identifier: MIT

#include "platform/qt_xdg/input_method_probe.h"

#include "platform/qt_xdg/session_bus.h"
#include "platform/xdg/home_folder.h"
#include "platform/xdg/small_file.h"

#include <QByteArray>
#include <QDBusConnection>
#include <QString>
#include <QtGlobal>

#include <csignal>
#include <cstddef>
#include <filesystem>
#include <sstream>
#include <string_view>
#include <sys/types.h>

namespace tessarel::qt {

namespace {

constexpr const char* kInputMethod = "QT_IM_MODULE";

/// Returns the file in which ibus announces its bus for this display, as Qt looks for it.
std::filesystem::path announcementFile() {
    if (qEnvironmentVariableIsSet("IBUS_ADDRESS_FILE"))
        return qgetenv("IBUS_ADDRESS_FILE").toStdString();
    std::string host = "unix";
    std::string number = qgetenv("WAYLAND_DISPLAY").toStdString();
    if (!qEnvironmentVariableIsSet("WAYLAND_DISPLAY")) {
        const std::string display = qgetenv("DISPLAY").toStdString(); // such as ":0" or "host:0.0"
        const std::size_t colon = display.find(':');
        if (colon == std::string::npos)
            return {};
        if (colon > 0)
            host = display.substr(0, colon);
        number = display.substr(colon + 1, display.find('.', colon) - colon - 1);
    }
    const std::string machine = QDBusConnection::localMachineId().toStdString();
    return xdg::configurationFolder() / "ibus" / "bus" / (machine + "-" + host + "-" + number);
}

} // namespace

InputMethodProbe::InputMethodProbe() {
    if (qgetenv(kInputMethod) != "ibus")
        return;
    const auto announcement = xdg::readSmallFile(announcementFile());
    if (const std::string address = addressIn(announcement.value_or("")); !address.empty())
        m_probe.emplace(address);
}

std::shared_ptr<void> InputMethodProbe::beforeQt(std::chrono::milliseconds patience) {
    if (!m_probe || m_probe->wait(patience) == BusProbe::State::Replied)
        return nullptr;
    return std::make_shared<HiddenBus>(kInputMethod);
}

bool InputMethodProbe::usesSessionBus() {
    return qgetenv(kInputMethod).startsWith("fcitx"); // or fcitx5
}

std::string InputMethodProbe::addressIn(const std::string& announcement) {
    constexpr std::string_view kAddress = "IBUS_ADDRESS=";
    constexpr std::string_view kProcess = "IBUS_DAEMON_PID=";
    std::string address;
    pid_t process = 0;
    std::istringstream lines(announcement);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(kAddress))
            address = line.substr(kAddress.size());
        else if (line.starts_with(kProcess))
            process = QByteArray(line.substr(kProcess.size()).c_str()).trimmed().toInt();
    }
    return process > 0 && ::kill(process, 0) == 0 ? address : std::string();
}

} // namespace tessarel::qt
