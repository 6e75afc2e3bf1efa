// SPDX-License-Identifier: MIT

#pragma once

#include "web_server.h"

#include <QCoreApplication>
#include <QSslConfiguration>
#include <gtest/gtest.h>

#include <array>

namespace tessarel::qt {

/// A program without a screen that trusts one certificate in addition to those of the system.
class WebTest : public testing::Test {
protected:
    WebTest() {
        QSslConfiguration trusting = m_systemTrust;
        trusting.addCaCertificate(identity().localCertificate());
        QSslConfiguration::setDefaultConfiguration(trusting);
    }
    ~WebTest() override { QSslConfiguration::setDefaultConfiguration(m_systemTrust); }

    /// Returns the trusted certificate of a local server, with its key.
    static const QSslConfiguration& identity() {
        static const QSslConfiguration made = makeIdentity("127.0.0.1");
        return made;
    }

private:
    int m_argumentCount = 1;
    std::array<char, 5> m_programName{"test"};
    std::array<char*, 2> m_arguments{m_programName.data(), nullptr};
    QCoreApplication m_application{m_argumentCount, m_arguments.data()};
    QSslConfiguration m_systemTrust = QSslConfiguration::defaultConfiguration();
};

} // namespace tessarel::qt
