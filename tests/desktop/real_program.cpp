#include "desktop/real_program.h"

#include <gtest/gtest.h>

namespace tessarel::x11test {

std::ostream& operator<<(std::ostream& stream, const RealProgram& program) {
    return stream << program.name;
}

StartedProgram start(const RealProgram& program, Desktop& desktop) {
    Observer& observer = desktop.observer();
    const std::size_t before = observer.clients().size();
    Environment environment = desktop.server().environment();
    environment["DBUS_SESSION_BUS_ADDRESS"] = "disabled:";
    environment["GSK_RENDERER"] = "cairo"; // there is no graphics card
    auto process = std::make_unique<ChildProcess>(program.arguments, environment);
    EXPECT_TRUE(observer.waitUntil([&] { return observer.clients().size() > before; })) << process->errors();
    const xcb_window_t window = observer.clients().back();
    observer.watch(window);
    return {std::move(process), window};
}

} // namespace tessarel::x11test
