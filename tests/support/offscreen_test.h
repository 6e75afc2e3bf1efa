// SPDX-License-Identifier: MIT

#pragma once

#include <QApplication>
#include <gtest/gtest.h>

#include <array>

namespace tessarel::qt {

/// Runs a QApplication without a screen.
class OffscreenTest : public testing::Test {
protected:
    static void SetUpTestSuite() { qputenv("QT_QPA_PLATFORM", "offscreen"); }

private:
    int m_argumentCount = 1;
    std::array<char, 5> m_programName{"test"};
    std::array<char*, 2> m_arguments{m_programName.data(), nullptr};
    QApplication m_application{m_argumentCount, m_arguments.data()};
};

} // namespace tessarel::qt
