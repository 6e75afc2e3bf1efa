// SPDX-License-Identifier: MIT

// A program with nothing but a status item. It reads commands for the item from its standard input, and
// reports the item's events on its standard output.

#include "platform/qt/qt_main_queue.h"
#include "platform/qt_x11/tray/qt_status_item.h"
#include "platform/qt_xdg/session_bus.h"

#include <QApplication>

#include <iostream>
#include <string>
#include <unistd.h>
#include <utility>

using namespace tessarel;

namespace {

MenuItem row(std::string title, bool checked = false) {
    MenuItem item;
    item.title = std::move(title);
    item.command = MenuCommand::RunMenuAction;
    item.isChecked = checked;
    return item;
}

/// Returns rows of equal height, so that a test can find each by its position. The title says how often the
/// menu was requested; the submenu ends with `layouts` additional rows.
Menu menuAskedFor(int times, int layouts) {
    MenuItem title = row("Asked " + std::to_string(times));
    title.isEnabled = false;
    MenuItem names = row("Names");
    names.submenu = {row("Code & Docs & more"),
                     row("my_layout_"),
                     row("<b>bold</b>"),
                     row("two\nlines"),
                     row("חלון שלי"),
                     row("over\u202eride"),
                     row(std::string(10'000, 'W')),
                     row("R&"),
                     row("")};
    for (int i = 1; i <= layouts; ++i)
        names.submenu.push_back(row("Layout " + std::to_string(i)));
    MenuItem quit = row("Quit");
    quit.keyEquivalent = "q";
    return {title, row("Alpha"), row("Beta", true), names, quit};
}

class Probe {
public:
    Probe(qt::QtMainQueue& queue, qt::SessionBus& bus)
        : m_queue(queue), m_item(queue, bus),
          m_subscription(
              m_item.create({.menuNeedsUpdate =
                                 [this] {
                                     tell("asked " + std::to_string(++m_asked));
                                     return menuAskedFor(m_asked, m_layouts);
                                 },
                             .itemSelected = [](const MenuItem& item) { tell("selected " + item.title); }})),
          m_input(m_queue.onReadable(STDIN_FILENO, [this] { readCommands(); })) {
        m_item.setSymbol("rectangle.3.group", "Status item probe");
        tell("ready");
    }

private:
    static void tell(const std::string& line) { std::cout << line << std::endl; }

    void readCommands() {
        char byte = 0;
        if (::read(STDIN_FILENO, &byte, 1) != 1)
            QCoreApplication::quit();
        else if (byte != '\n')
            m_line += byte;
        else
            obey(std::exchange(m_line, {}));
    }

    void obey(const std::string& line) {
        const std::size_t space = line.find(' ');
        const std::string command = line.substr(0, space);
        const std::string argument = space == std::string::npos ? "" : line.substr(space + 1);
        if (command == "symbol")
            m_item.setSymbol(argument, "Status item probe");
        else if (command == "clear")
            m_item.clearImage();
        else if (command == "title")
            m_item.setTitle(argument);
        else if (command == "disabled")
            m_item.setAppearsDisabled(argument == "yes");
        else if (command == "layouts")
            m_layouts = std::stoi(argument);
        else if (command == "remove")
            m_subscription.reset();
        tell("done");
    }

    qt::QtMainQueue& m_queue;
    qt::QtStatusItem m_item;
    int m_asked = 0;
    int m_layouts = 0;
    std::string m_line;
    SubscriptionPtr m_subscription;
    SubscriptionPtr m_input;
};

} // namespace

int main(int argc, char** argv) {
    qt::QtMainQueue queue;
    qt::SessionBus bus(queue);
    const QApplication application(argc, argv);
    bus.start();
    QApplication::setQuitOnLastWindowClosed(false);
    const Probe probe(queue, bus);
    return QCoreApplication::exec(); // see SessionBus::start
}
