// SPDX-License-Identifier: MIT

#include "contract/contract_web.h"
#include "platform/qt/system_wall_clock.h"
#include "platform/qt_web/process/qt_url_loading_process.h"
#include "support/qt_loop.h"
#include "web_server.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

#include <array>

namespace tessarel::contract {

namespace {

/// The web contract by the helper program, with a local web server.
class QtContractWeb : public ContractWeb {
public:
    ~QtContractWeb() override { EXPECT_TRUE(qt::loopUntilNoChild()); }
    UrlLoadingPort& urlLoading() override { return m_urlLoading; }
    WallClockPort& wallClock() override { return m_wallClock; }

    std::string page(const UrlResponse& response) override {
        return add(qt::reply(std::to_string(response.statusCode) + " Status", response.body.value_or("")));
    }
    std::string silentPage() override {
        return add([](QTcpSocket&) {});
    }
    std::string nowhere() override {
        qt::WebServer gone;
        return gone.url("/");
    }

    void advance(MainQueuePort::Duration duration) override { runQtLoop(duration); }
    bool runUntil(const std::function<bool()>& holds) override { return qt::loopUntil(holds); }

private:
    std::string add(qt::WebServer::Answer answer) {
        const std::string path = "/" + std::to_string(m_pages++);
        m_server.at(path, std::move(answer));
        return m_server.url(path);
    }

    int m_argumentCount = 1;
    std::array<char, 5> m_programName{"test"};
    std::array<char*, 2> m_arguments{m_programName.data(), nullptr};
    QCoreApplication m_application{m_argumentCount, m_arguments.data()};
    qt::WebServer m_server;
    int m_pages = 0;
    qt::QtUrlLoadingProcess m_urlLoading;
    qt::SystemWallClock m_wallClock;
};

} // namespace

std::unique_ptr<ContractWeb> makeContractWeb() {
    return std::make_unique<QtContractWeb>();
}

} // namespace tessarel::contract
