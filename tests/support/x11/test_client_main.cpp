// SPDX-License-Identifier: MIT

// A program whose windows the tests move: it executes commands from its standard input and replies to each
// with one line. It does not depend on Tessarel.
#include "support/x11/x_connection.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <iostream>
#include <map>
#include <optional>
#include <poll.h>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using tessarel::x11test::own;
using tessarel::x11test::XConnection;

using Words = std::vector<std::string>;
using Numbers = std::vector<std::uint32_t>;

Words split(const std::string& text, char separator) {
    Words words;
    std::istringstream stream(text);
    for (std::string word; std::getline(stream, word, separator);)
        words.push_back(word);
    return words;
}

std::uint32_t number(const std::string& text) {
    return static_cast<std::uint32_t>(std::stoll(text));
}

Numbers numbers(const std::string& text) {
    Numbers all;
    for (const std::string& word : split(text, ','))
        all.push_back(number(word));
    return all;
}

std::string bytes(const std::string& hexadecimal) {
    std::string text(hexadecimal.size() / 2, '\0');
    const char* digits = hexadecimal.data();
    for (char& byte : text) {
        unsigned char value = 0;
        std::from_chars(digits, digits + 2, value, 16);
        byte = static_cast<char>(value);
        digits += 2;
    }
    return text;
}

/// The options of a window. An option can occur several times.
class Options {
public:
    explicit Options(const Words& words) {
        for (const std::string& word : words)
            if (const std::size_t sign = word.find('='); sign != std::string::npos)
                m_values[word.substr(0, sign)].push_back(word.substr(sign + 1));
    }

    [[nodiscard]] bool has(const std::string& name) const { return m_values.contains(name); }
    [[nodiscard]] Words all(const std::string& name) const { return has(name) ? m_values.at(name) : Words{}; }
    [[nodiscard]] std::string one(const std::string& name) const { return has(name) ? all(name).back() : ""; }
    [[nodiscard]] Numbers list(const std::string& name) const { return numbers(one(name)); }

private:
    std::map<std::string, Words> m_values;
};

constexpr std::uint16_t kPlace =
    XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT;

using Clock = std::chrono::steady_clock;

/// A window that the client moves back to an earlier frame by itself.
struct Return {
    std::chrono::milliseconds delay;
    Numbers frame;
    std::optional<Clock::time_point> due; ///< set once the window is mapped
    bool isLate = false;                  ///< the window has been resized meanwhile
    bool isDone = false;
};

struct Counters {
    int real = 0;
    int synthetic = 0;
};

class Client {
public:
    int run();

private:
    std::string answer(const Words& words);
    std::string open(const Options& options);
    xcb_window_t make(const Options& options);
    void openAndClose(const Options& options);
    void waitUntilShown(xcb_window_t window);
    void setIdentity(xcb_window_t window, const Options& options);
    void setSizeHints(xcb_window_t window, const Options& options);
    void setAppearance(xcb_window_t window, const Options& options);
    std::string grab(const Words& words);
    std::string grabKeyboard();
    std::string grabMouse();

    void setNumbers(xcb_window_t window, const char* name, const char* type, const Numbers& values);
    void setText(xcb_window_t window, const char* name, const char* type, const std::string& text);
    void setProperty(const Words& words);
    void drainEvents();
    void take(const xcb_generic_event_t& event);
    int moveBack();
    [[nodiscard]] std::string comeBack(xcb_window_t window) const;

    XConnection m_x{std::getenv("DISPLAY")};
    std::map<xcb_window_t, Counters> m_counters;
    std::map<xcb_window_t, Return> m_returns;
    std::optional<xcb_window_t> m_lastShown;
    int m_keyPresses = 0;
};

void Client::setNumbers(xcb_window_t window, const char* name, const char* type, const Numbers& values) {
    xcb_change_property(m_x.get(), XCB_PROP_MODE_REPLACE, window, m_x.atom(name), m_x.atom(type), 32,
                        static_cast<std::uint32_t>(values.size()), values.data());
}

void Client::setText(xcb_window_t window, const char* name, const char* type, const std::string& text) {
    xcb_change_property(m_x.get(), XCB_PROP_MODE_REPLACE, window, m_x.atom(name), m_x.atom(type), 8,
                        static_cast<std::uint32_t>(text.size()), text.data());
}

void Client::setProperty(const Words& words) {
    const std::string value = words.size() > 5 ? bytes(words[5]) : std::string();
    const std::uint32_t format = number(words.at(4));
    xcb_change_property(m_x.get(), XCB_PROP_MODE_REPLACE, number(words.at(1)), m_x.atom(words.at(2)),
                        m_x.atom(words.at(3)), static_cast<std::uint8_t>(format),
                        static_cast<std::uint32_t>(value.size()) / (format / 8), value.data());
}

void Client::setIdentity(xcb_window_t window, const Options& options) {
    setText(window, "WM_NAME", "STRING", options.one("title"));
    const std::string nothing(1, '\0');
    setText(window, "WM_CLASS", "STRING", options.one("instance") + nothing + options.one("class") + nothing);
    if (options.has("gtk-id"))
        setText(window, "_GTK_APPLICATION_ID", "UTF8_STRING", options.one("gtk-id"));
    if (!options.has("pid"))
        setNumbers(window, "_NET_WM_PID", "CARDINAL", {static_cast<std::uint32_t>(::getpid())});
    std::array<char, 256> host{};
    ::gethostname(host.data(), host.size() - 1);
    setText(window, "WM_CLIENT_MACHINE", "STRING", host.data());
}

void Client::setSizeHints(xcb_window_t window, const Options& options) {
    enum Field { Flags, MinimumWidth = 5, MaximumWidth = 7, StepWidth = 9, BaseWidth = 15, Gravity = 17 };
    constexpr std::uint32_t kUserPosition = 1;
    constexpr std::uint32_t kUserSize = 2;
    Numbers hints(18, 0);
    hints[Flags] = kUserPosition | kUserSize;
    const auto setPair = [&](const char* name, Field field, std::uint32_t flag) {
        if (!options.has(name))
            return;
        hints[Flags] |= flag;
        const auto place = static_cast<std::size_t>(field);
        hints[place] = options.list(name).at(0);
        hints[place + 1] = options.list(name).at(1);
    };
    setPair("minimum", MinimumWidth, 1U << 4U);
    setPair("maximum", MaximumWidth, 1U << 5U);
    setPair("step", StepWidth, 1U << 6U);
    setPair("base", BaseWidth, 1U << 8U);
    if (options.has("gravity")) {
        hints[Flags] |= 1U << 9U;
        hints[Gravity] = number(options.one("gravity"));
    }
    setNumbers(window, "WM_NORMAL_HINTS", "WM_SIZE_HINTS", hints);
}

void Client::setAppearance(xcb_window_t window, const Options& options) {
    constexpr std::uint32_t kInput = 1;
    constexpr std::uint32_t kInitialState = 2;
    const std::uint32_t state = options.has("iconic") ? 3 : 1;
    setNumbers(window, "WM_HINTS", "WM_HINTS", {kInput | kInitialState, 1, state, 0, 0, 0, 0, 0, 0});
    if (options.has("shadow"))
        setNumbers(window, "_GTK_FRAME_EXTENTS", "CARDINAL", options.list("shadow"));
    if (options.has("decorated"))
        setNumbers(window, "_MOTIF_WM_HINTS", "_MOTIF_WM_HINTS", {2, 0, 0, 0, 0});
    if (options.has("type"))
        setNumbers(window, "_NET_WM_WINDOW_TYPE", "ATOM", {m_x.atom(options.one("type"))});
    if (options.has("transient-for"))
        setNumbers(window, "WM_TRANSIENT_FOR", "WINDOW", {number(options.one("transient-for"))});
    Numbers states;
    for (const std::string& name : options.all("state"))
        states.push_back(m_x.atom(name));
    if (!states.empty())
        setNumbers(window, "_NET_WM_STATE", "ATOM", states);
    if (options.has("desktop"))
        setNumbers(window, "_NET_WM_DESKTOP", "CARDINAL", options.list("desktop"));
    Numbers strut;
    for (const std::string& value : options.all("strut"))
        strut.push_back(number(value));
    if (strut.empty())
        return;
    setNumbers(window, "_NET_WM_STRUT_PARTIAL", "CARDINAL", strut);
    setNumbers(window, "_NET_WM_STRUT", "CARDINAL", Numbers(strut.begin(), strut.begin() + 4));
}

xcb_window_t Client::make(const Options& options) {
    const Numbers client = options.list("client");
    const xcb_window_t window = xcb_generate_id(m_x.get());
    const Numbers attributes = {m_x.screen().white_pixel, options.has("override") ? 1U : 0U,
                                XCB_EVENT_MASK_STRUCTURE_NOTIFY};
    xcb_create_window(m_x.get(), XCB_COPY_FROM_PARENT, window, m_x.root(),
                      static_cast<std::int16_t>(client.at(0)), static_cast<std::int16_t>(client.at(1)),
                      static_cast<std::uint16_t>(client.at(2)), static_cast<std::uint16_t>(client.at(3)), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, attributes.data());
    setIdentity(window, options);
    setSizeHints(window, options);
    setAppearance(window, options);
    xcb_map_window(m_x.get(), window);
    return window;
}

std::string Client::open(const Options& options) {
    const xcb_window_t window = make(options);
    if (options.has("comes-back-after")) {
        const std::chrono::milliseconds delay(number(options.one("comes-back-after")));
        m_returns[window] = {.delay = delay, .frame = options.list("client"), .due = std::nullopt};
    }
    return std::to_string(window);
}

void Client::openAndClose(const Options& options) {
    for (std::uint32_t left = number(options.one("count")); left > 0; --left) {
        const xcb_window_t window = make(options);
        waitUntilShown(window);
        xcb_destroy_window(m_x.get(), window);
    }
    m_counters.clear();
}

void Client::waitUntilShown(xcb_window_t window) {
    xcb_flush(m_x.get());
    while (m_lastShown != window) {
        const auto event = own(xcb_wait_for_event(m_x.get()));
        if (!event)
            return;
        take(*event);
    }
}

std::string Client::grab(const Words& words) {
    const auto cookie = xcb_grab_key_checked(
        m_x.get(), 0, m_x.root(), static_cast<std::uint16_t>(number(words.at(2))),
        static_cast<xcb_keycode_t>(number(words.at(1))), XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    return own(xcb_request_check(m_x.get(), cookie)) ? "no" : "yes";
}

std::string Client::grabKeyboard() {
    const auto cookie = xcb_grab_keyboard(m_x.get(), 0, m_x.root(), XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC,
                                          XCB_GRAB_MODE_ASYNC);
    const auto reply = own(xcb_grab_keyboard_reply(m_x.get(), cookie, nullptr));
    return reply && reply->status == XCB_GRAB_STATUS_SUCCESS ? "yes" : "no";
}

std::string Client::grabMouse() {
    const auto cookie = xcb_grab_pointer(m_x.get(), 0, m_x.root(), 0, XCB_GRAB_MODE_ASYNC,
                                         XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME);
    const auto reply = own(xcb_grab_pointer_reply(m_x.get(), cookie, nullptr));
    return reply && reply->status == XCB_GRAB_STATUS_SUCCESS ? "yes" : "no";
}

std::string Client::answer(const Words& words) {
    const std::string& command = words.at(0);
    if (command == "open")
        return open(Options(words));
    if (command == "destroy")
        xcb_destroy_window(m_x.get(), number(words.at(1)));
    else if (command == "open-and-close")
        openAndClose(Options(words));
    else if (command == "property")
        setProperty(words);
    else if (command == "grab")
        return grab(words);
    else if (command == "ungrab")
        xcb_ungrab_key(m_x.get(), static_cast<xcb_keycode_t>(number(words.at(1))), m_x.root(),
                       static_cast<std::uint16_t>(number(words.at(2))));
    else if (command == "grab-keyboard")
        return grabKeyboard();
    else if (command == "ungrab-keyboard")
        xcb_ungrab_keyboard(m_x.get(), XCB_CURRENT_TIME);
    else if (command == "grab-mouse")
        return grabMouse();
    else if (command == "ungrab-mouse")
        xcb_ungrab_pointer(m_x.get(), XCB_CURRENT_TIME);
    else if (command == "presses")
        return std::to_string(m_keyPresses);
    else if (command == "come-back")
        return comeBack(number(words.at(1)));
    else if (command == "move-back")
        xcb_configure_window(m_x.get(), number(words.at(1)), kPlace, numbers(words.at(2)).data());
    else if (command == "count") {
        const Counters& counters = m_counters[number(words.at(1))];
        return std::to_string(counters.real) + " " + std::to_string(counters.synthetic);
    }
    return "done";
}

void Client::take(const xcb_generic_event_t& event) {
    const auto type = event.response_type & 0x7f;
    if (type == XCB_KEY_PRESS)
        ++m_keyPresses;
    if (type == XCB_MAP_NOTIFY) {
        m_lastShown = reinterpret_cast<const xcb_map_notify_event_t&>(event).window;
        if (const auto one = m_returns.find(*m_lastShown); one != m_returns.end() && !one->second.due)
            one->second.due = Clock::now() + one->second.delay;
    }
    if (type != XCB_CONFIGURE_NOTIFY)
        return;
    Counters& counters = m_counters[reinterpret_cast<const xcb_configure_notify_event_t&>(event).window];
    const bool sent = (event.response_type & 0x80) != 0;
    ++(sent ? counters.synthetic : counters.real);
    const auto& configured = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
    if (const auto one = m_returns.find(configured.window); one != m_returns.end() && !one->second.isDone)
        one->second.isLate |=
            configured.width != one->second.frame.at(2) || configured.height != one->second.frame.at(3);
}

void Client::drainEvents() {
    while (const auto event = own(xcb_poll_for_event(m_x.get())))
        take(*event);
}

/// Moves back the windows that are due. Returns the milliseconds until the next one is due, or -1: a timeout
/// for poll().
int Client::moveBack() {
    const auto now = Clock::now();
    int wait = -1;
    for (auto& [window, back] : m_returns) {
        if (!back.due || back.isDone)
            continue;
        if (*back.due <= now) {
            m_x.roundTrip();
            drainEvents();
            back.isDone = true;
            xcb_configure_window(m_x.get(), window, kPlace, back.frame.data());
            continue;
        }
        const auto left =
            static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(*back.due - now).count());
        wait = wait < 0 ? left : std::min(wait, left);
    }
    return wait;
}

std::string Client::comeBack(xcb_window_t window) const {
    const auto one = m_returns.find(window);
    if (one == m_returns.end() || !one->second.isDone)
        return "not yet";
    return one->second.isLate ? "late" : "first";
}

int Client::run() {
    std::string unread;
    while (xcb_connection_has_error(m_x.get()) == 0) {
        const int wait = moveBack();
        xcb_flush(m_x.get());
        std::array<pollfd, 2> files = {
            {{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0},
             {.fd = xcb_get_file_descriptor(m_x.get()), .events = POLLIN, .revents = 0}}};
        ::poll(files.data(), files.size(), wait);
        drainEvents();
        if (files[0].revents == 0)
            continue;
        std::array<char, 4096> part{};
        const ssize_t length = ::read(STDIN_FILENO, part.data(), part.size());
        if (length <= 0)
            return 0;
        unread.append(part.data(), static_cast<std::size_t>(length));
        for (std::size_t end = 0; (end = unread.find('\n')) != std::string::npos; unread.erase(0, end + 1)) {
            m_x.roundTrip();
            drainEvents();
            const std::string line = answer(split(unread.substr(0, end), '\t'));
            m_x.roundTrip();
            std::cout << line << std::endl;
        }
    }
    return 1;
}

} // namespace

int main() {
    return Client().run();
}
