// SPDX-License-Identifier: MIT

#include "desktop/drag_fixture.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace tessarel::x11test {
namespace {

/// The activity of the program while nothing is dragged.
class DragRestTest : public DragFixture {
protected:
    /// Returns how often all threads of the program together have woken up.
    [[nodiscard]] long wakeUps() {
        const std::string process = "/proc/" + std::to_string(desktop.program().process().pid());
        long sum = 0;
        for (const auto& thread : std::filesystem::directory_iterator(process + "/task")) {
            std::ifstream status(thread.path() / "status");
            for (std::string word; status >> word;)
                if (long count = 0; word == "voluntary_ctxt_switches:" && status >> count)
                    sum += count;
        }
        return sum;
    }

    /// Moves the pointer over the desktop and its windows.
    void moveAbout() {
        for (int i = 0; i < 400; ++i)
            hand.moveTo(100 + 3 * i, 100 + 7 * i % 700);
    }

    Mouse hand{desktop.observer()};
};

TEST_P(DragRestTest, PointerMotionWithoutADragDoesNotWakeTheProgram) {
    dragInto(desktop.open(client), zoneFrame(2));

    // Repeated, because the first rounds may still see the end of the drag's work.
    EXPECT_TRUE(desktop.observer().waitUntil([&] {
        const long before = wakeUps();
        moveAbout();
        return wakeUps() == before;
    }));
    EXPECT_TRUE(desktop.program().running());
}

INSTANTIATE_TEST_SUITE_P(One, DragRestTest, testing::Values(WindowManagerKind::Openbox), managerName);

} // namespace
} // namespace tessarel::x11test
