// SPDX-License-Identifier: MIT

#include "support/x11/test_client.h"

#include <csignal>
#include <cstring>
#include <fstream>
#include <initializer_list>
#include <stdexcept>

namespace tessarel::x11test {

namespace {

std::string list(std::initializer_list<long> values) {
    std::string text;
    for (const long value : values)
        text += (text.empty() ? "" : ",") + std::to_string(value);
    return text;
}

std::string pairText(const WindowOptions::Pair& pair) {
    return list({pair.width, pair.height});
}

/// A command and its arguments, separated by tabs. Arguments must not contain tabs.
class Command {
public:
    explicit Command(std::string name) : m_text(std::move(name)) {}

    Command& add(std::string_view value) {
        m_text += '\t';
        m_text += value;
        return *this;
    }
    Command& add(std::uint32_t value) { return add(std::to_string(value)); }
    Command& option(std::string_view key, std::string_view value) {
        return add(std::string(key) + "=" + std::string(value));
    }

    [[nodiscard]] const std::string& text() const { return m_text; }

private:
    std::string m_text;
};

void addSizeHints(Command& command, const WindowOptions& options) {
    if (options.gravity)
        command.option("gravity", std::to_string(*options.gravity));
    if (options.step)
        command.option("step", pairText(*options.step));
    if (options.base)
        command.option("base", pairText(*options.base));
    if (options.minimum)
        command.option("minimum", pairText(*options.minimum));
    if (options.maximum)
        command.option("maximum", pairText(*options.maximum));
}

void addIdentity(Command& command, const WindowOptions& options) {
    command.option("title", options.title);
    command.option("instance", options.instance).option("class", options.className);
    if (!options.gtkApplicationId.empty())
        command.option("gtk-id", options.gtkApplicationId);
    if (!options.processId)
        command.option("pid", "0");
}

void addAppearance(Command& command, const WindowOptions& options) {
    if (const auto& shadow = options.shadow)
        command.option("shadow", list({shadow->left, shadow->right, shadow->top, shadow->bottom}));
    if (!options.decorated)
        command.option("decorated", "0");
    for (const std::string& state : options.states)
        command.option("state", state);
    if (options.iconic)
        command.option("iconic", "1");
    if (!options.type.empty())
        command.option("type", options.type);
    if (options.transientFor != XCB_WINDOW_NONE)
        command.option("transient-for", std::to_string(options.transientFor));
    if (options.overrideRedirect)
        command.option("override", "1");
    if (options.desktop)
        command.option("desktop", std::to_string(*options.desktop));
    if (options.comesBackAfter)
        command.option("comes-back-after", std::to_string(options.comesBackAfter->count()));
    for (const std::uint32_t value : options.strut)
        command.option("strut", std::to_string(value));
}

void addWindow(Command& command, const WindowOptions& options) {
    const Frame& client = options.client;
    command.option("client", list({client.x, client.y, client.width, client.height}));
    addIdentity(command, options);
    addSizeHints(command, options);
    addAppearance(command, options);
}

std::string hexadecimal(std::string_view bytes) {
    constexpr const char* kDigits = "0123456789abcdef";
    std::string text(2 * bytes.size(), '\0');
    char* digit = text.data();
    for (const char character : bytes) {
        const auto byte = static_cast<unsigned char>(character);
        *digit++ = kDigits[byte >> 4U];
        *digit++ = kDigits[byte & 0xfU];
    }
    return text;
}

} // namespace

TestClient::TestClient(const XServer& server) : m_process({TESSAREL_TEST_CLIENT}, server.environment()) {
    ask("connect");
}

std::string TestClient::ask(const std::string& command) {
    m_process.writeLine(command);
    return m_process.readLine();
}

xcb_window_t TestClient::open(const WindowOptions& options) {
    Command command("open");
    addWindow(command, options);
    return static_cast<xcb_window_t>(std::stoul(ask(command.text())));
}

void TestClient::destroy(xcb_window_t window) {
    ask(Command("destroy").add(window).text());
}

void TestClient::openAndClose(const WindowOptions& options, int count) {
    Command command("open-and-close");
    command.option("count", std::to_string(count));
    addWindow(command, options);
    ask(command.text());
}

ComeBack TestClient::comeBack(xcb_window_t window) {
    const std::string answer = ask(Command("come-back").add(window).text());
    return answer == "first" ? ComeBack::First : answer == "late" ? ComeBack::Late : ComeBack::NotYet;
}

void TestClient::moveBack(xcb_window_t window, const Frame& client) {
    ask(Command("move-back").add(window).add(list({client.x, client.y, client.width, client.height})).text());
}

ConfigureCount TestClient::configures(xcb_window_t window) {
    const std::string answer = ask(Command("count").add(window).text());
    const std::size_t space = answer.find(' ');
    return {.real = std::stoi(answer.substr(0, space)), .synthetic = std::stoi(answer.substr(space + 1))};
}

void TestClient::setProperty(xcb_window_t window, std::string_view name, std::string_view type, int format,
                             std::string_view bytes) {
    Command command("property");
    command.add(window).add(name).add(type).add(std::to_string(format)).add(hexadecimal(bytes));
    ask(command.text());
}

void TestClient::setCardinals(xcb_window_t window, std::string_view name,
                              const std::vector<std::uint32_t>& values) {
    std::string bytes(values.size() * sizeof(std::uint32_t), '\0');
    if (!values.empty())
        std::memcpy(bytes.data(), values.data(), bytes.size());
    setProperty(window, name, "CARDINAL", 32, bytes);
}

bool TestClient::grabKey(const Combination& combination) {
    return ask(Command("grab").add(combination.key).add(combination.modifiers).text()) == "yes";
}

void TestClient::ungrabKey(const Combination& combination) {
    ask(Command("ungrab").add(combination.key).add(combination.modifiers).text());
}

bool TestClient::grabKeyboard() {
    return ask("grab-keyboard") == "yes";
}

void TestClient::ungrabKeyboard() {
    ask("ungrab-keyboard");
}

bool TestClient::grabMouse() {
    return ask("grab-mouse") == "yes";
}

void TestClient::ungrabMouse() {
    ask("ungrab-mouse");
}

int TestClient::keyPresses() {
    return std::stoi(ask("presses"));
}

void TestClient::stop() {
    m_process.signal(SIGSTOP);
    // The client waits between two commands, so the signal takes effect at once.
}

void TestClient::resume() {
    m_process.signal(SIGCONT);
}

} // namespace tessarel::x11test
