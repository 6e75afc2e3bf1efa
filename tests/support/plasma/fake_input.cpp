// SPDX-License-Identifier: MIT

#include "support/plasma/fake_input.h"

#include "fake-input-client.h"

#include <algorithm>
#include <linux/input-event-codes.h>
#include <stdexcept>
#include <string_view>
#include <vector>
#include <wayland-client.h>

namespace tessarel::plasmatest {

class FakeInput::Connection {
public:
    explicit Connection(const std::string& socket) : m_display(wl_display_connect(socket.c_str())) {
        if (m_display == nullptr)
            throw std::runtime_error("no Wayland socket " + socket);
        m_registry = wl_display_get_registry(m_display);
        wl_registry_add_listener(m_registry, &kListener, this);
        roundTrip();
        if (m_input == nullptr)
            throw std::runtime_error("the compositor accepts no synthetic input");
        org_kde_kwin_fake_input_authenticate(m_input, "test", "test");
        roundTrip();
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() {
        if (m_input != nullptr)
            org_kde_kwin_fake_input_destroy(m_input);
        wl_registry_destroy(m_registry);
        wl_display_disconnect(m_display);
    }

    void roundTrip() {
        if (wl_display_roundtrip(m_display) < 0)
            throw std::runtime_error("lost the compositor");
    }
    [[nodiscard]] org_kde_kwin_fake_input* input() const { return m_input; }

private:
    static void addGlobal(void* data, wl_registry* registry, std::uint32_t name, const char* interface,
                          std::uint32_t version) {
        constexpr std::uint32_t kWithKeys = 4;
        if (std::string_view(interface) != org_kde_kwin_fake_input_interface.name || version < kWithKeys)
            return;
        static_cast<Connection*>(data)->m_input = static_cast<org_kde_kwin_fake_input*>(
            wl_registry_bind(registry, name, &org_kde_kwin_fake_input_interface, kWithKeys));
    }
    static void removeGlobal(void*, wl_registry*, std::uint32_t) {}
    static constexpr wl_registry_listener kListener{addGlobal, removeGlobal};

    wl_display* m_display;
    wl_registry* m_registry = nullptr;
    org_kde_kwin_fake_input* m_input = nullptr;
};

FakeInput::FakeInput(const std::string& socket) : m_connection(std::make_unique<Connection>(socket)) {}

FakeInput::~FakeInput() = default;

void FakeInput::press(std::initializer_list<std::uint32_t> keys) {
    for (const std::uint32_t one : keys)
        setKey(one, true);
    std::vector<std::uint32_t> reversed(keys);
    std::reverse(reversed.begin(), reversed.end());
    for (const std::uint32_t one : reversed)
        setKey(one, false);
}

void FakeInput::setKey(std::uint32_t key, bool isPressed) {
    org_kde_kwin_fake_input_keyboard_key(m_connection->input(), key, isPressed ? 1 : 0);
    m_connection->roundTrip();
}

void FakeInput::moveTo(double x, double y) {
    org_kde_kwin_fake_input_pointer_motion_absolute(m_connection->input(), wl_fixed_from_double(x),
                                                    wl_fixed_from_double(y));
    m_connection->roundTrip();
}

void FakeInput::setLeftButton(bool isPressed) {
    org_kde_kwin_fake_input_button(m_connection->input(), BTN_LEFT, isPressed ? 1 : 0);
    m_connection->roundTrip();
}

} // namespace tessarel::plasmatest
