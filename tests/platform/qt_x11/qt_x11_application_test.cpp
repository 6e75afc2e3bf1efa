// SPDX-License-Identifier: MIT

#include "platform/qt_x11/qt_x11_application.h"

#include "support/offscreen_test.h"

#include <QDialog>
#include <QMenu>
#include <QWidget>
#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <vector>

namespace tessarel::qt {
namespace {

class QtX11ApplicationTest : public OffscreenTest {
protected:
    static std::uint32_t idOf(const QWidget& window) { return static_cast<std::uint32_t>(window.winId()); }

    std::vector<std::uint32_t> brought;
    std::vector<std::uint32_t> focused;
    QtX11Application application{[this](std::uint32_t window) {
                                     brought.push_back(window);
                                     focused.push_back(window);
                                 },
                                 [this](std::uint32_t window) { brought.push_back(window); }};
};

TEST_F(QtX11ApplicationTest, VisibleWindowsComeToTheUser) {
    QWidget hidden;
    QWidget window;
    window.show();
    QMenu menu;
    menu.popup({});
    QWidget tip(nullptr, Qt::ToolTip);
    tip.show();

    application.activate();

    EXPECT_EQ(brought, std::vector{idOf(window)});
    EXPECT_EQ(focused, std::vector{idOf(window)});
}

TEST_F(QtX11ApplicationTest, AModalDialogComesLast) {
    QDialog first;
    QWidget window;
    QDialog last;
    for (QDialog* const dialog : {&first, &last})
        dialog->setModal(true);
    for (QWidget* const one : {static_cast<QWidget*>(&first), &window, static_cast<QWidget*>(&last)})
        one->show();

    application.activate();

    ASSERT_EQ(brought.size(), 3U);
    EXPECT_EQ(brought.front(), idOf(window));
    EXPECT_EQ((std::set{brought[1], brought[2]}), (std::set{idOf(first), idOf(last)}));
    EXPECT_EQ(focused, std::vector{brought.back()});
}

TEST_F(QtX11ApplicationTest, AMessageStaysWhereItIsBesideAnotherWindow) {
    QWidget window;
    QDialog message;
    for (QWidget* const one : {&window, static_cast<QWidget*>(&message)})
        one->show();

    application.activate();

    EXPECT_EQ(brought, std::vector{idOf(window)});
    EXPECT_EQ(focused, std::vector{idOf(window)});
}

TEST_F(QtX11ApplicationTest, AMessageAloneComesToTheUser) {
    QDialog message;
    message.show();

    application.activate();

    EXPECT_EQ(focused, std::vector{idOf(message)});
}

TEST_F(QtX11ApplicationTest, WithoutAWindowNothingHappens) {
    application.activate();

    EXPECT_TRUE(brought.empty());
}

} // namespace
} // namespace tessarel::qt
