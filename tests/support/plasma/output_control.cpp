// SPDX-License-Identifier: MIT

#include "support/plasma/output_control.h"

#include "kde-output-device-v2-client.h"
#include "kde-output-management-v2-client.h"

#include <optional>
#include <stdexcept>
#include <string_view>
#include <vector>
#include <wayland-client.h>

namespace tessarel::plasmatest {

namespace {

/// With this version, the primary display can be chosen.
constexpr std::uint32_t kManagementVersion = 2;

/// Reads nothing, but the events need handlers.
constexpr kde_output_device_v2_listener kNoDescription{
    .geometry = [](void*, kde_output_device_v2*, std::int32_t, std::int32_t, std::int32_t, std::int32_t,
                   std::int32_t, const char*, const char*, std::int32_t) {},
    .current_mode = [](void*, kde_output_device_v2*, kde_output_device_mode_v2*) {},
    .mode = [](void*, kde_output_device_v2*,
               kde_output_device_mode_v2* mode) { kde_output_device_mode_v2_destroy(mode); },
    .done = [](void*, kde_output_device_v2*) {},
    .scale = [](void*, kde_output_device_v2*, wl_fixed_t) {},
    .edid = [](void*, kde_output_device_v2*, const char*) {},
    .enabled = [](void*, kde_output_device_v2*, std::int32_t) {},
    .uuid = [](void*, kde_output_device_v2*, const char*) {},
    .serial_number = [](void*, kde_output_device_v2*, const char*) {},
    .eisa_id = [](void*, kde_output_device_v2*, const char*) {},
    .capabilities = [](void*, kde_output_device_v2*, std::uint32_t) {},
    .overscan = [](void*, kde_output_device_v2*, std::uint32_t) {},
    .vrr_policy = [](void*, kde_output_device_v2*, std::uint32_t) {},
    .rgb_range = [](void*, kde_output_device_v2*, std::uint32_t) {},
    .name = [](void*, kde_output_device_v2*, const char*) {}};

} // namespace

class OutputControl::Connection {
public:
    explicit Connection(const std::string& socket) : m_display(wl_display_connect(socket.c_str())) {
        if (m_display == nullptr)
            throw std::runtime_error("no Wayland socket " + socket);
        m_registry = wl_display_get_registry(m_display);
        static constexpr wl_registry_listener kListener{
            [](void* data, wl_registry*, std::uint32_t name, const char* interface, std::uint32_t version) {
                static_cast<Connection*>(data)->add(name, interface, version);
            },
            [](void*, wl_registry*, std::uint32_t) {}};
        wl_registry_add_listener(m_registry, &kListener, this);
        roundTrip();
        if (m_management == nullptr)
            throw std::runtime_error("the compositor lets nobody set up its displays");
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() {
        for (kde_output_device_v2* const display : m_displays)
            kde_output_device_v2_destroy(display);
        if (m_management != nullptr)
            kde_output_management_v2_destroy(m_management);
        wl_registry_destroy(m_registry);
        wl_display_disconnect(m_display);
    }

    void setUp(std::size_t display, const OutputSetup& setup) {
        kde_output_device_v2* const device = m_displays.at(display);
        kde_output_configuration_v2* const wish = kde_output_management_v2_create_configuration(m_management);
        std::optional<bool> isApplied;
        static constexpr kde_output_configuration_v2_listener kListener{
            [](void* data, kde_output_configuration_v2*) { *static_cast<std::optional<bool>*>(data) = true; },
            [](void* data, kde_output_configuration_v2*) {
                *static_cast<std::optional<bool>*>(data) = false;
            }};
        kde_output_configuration_v2_add_listener(wish, &kListener, &isApplied);
        kde_output_configuration_v2_enable(wish, device, setup.isEnabled ? 1 : 0);
        if (setup.isEnabled) {
            kde_output_configuration_v2_position(wish, device, setup.x, setup.y);
            kde_output_configuration_v2_scale(wish, device, wl_fixed_from_double(setup.scale));
        }
        if (setup.isPrimary)
            kde_output_configuration_v2_set_primary_output(wish, device);
        kde_output_configuration_v2_apply(wish);
        while (!isApplied)
            roundTrip();
        kde_output_configuration_v2_destroy(wish);
        if (!*isApplied)
            throw std::runtime_error("the compositor refuses the setup of a display");
    }

private:
    void roundTrip() {
        if (wl_display_roundtrip(m_display) < 0)
            throw std::runtime_error("lost the compositor");
    }

    void add(std::uint32_t name, std::string_view interface, std::uint32_t version) {
        if (interface == kde_output_device_v2_interface.name) {
            auto* const display = static_cast<kde_output_device_v2*>(
                wl_registry_bind(m_registry, name, &kde_output_device_v2_interface, 1));
            kde_output_device_v2_add_listener(display, &kNoDescription, nullptr);
            m_displays.push_back(display);
        } else if (interface == kde_output_management_v2_interface.name && version >= kManagementVersion) {
            m_management = static_cast<kde_output_management_v2*>(
                wl_registry_bind(m_registry, name, &kde_output_management_v2_interface, kManagementVersion));
        }
    }

    wl_display* m_display;
    wl_registry* m_registry = nullptr;
    kde_output_management_v2* m_management = nullptr;
    std::vector<kde_output_device_v2*> m_displays;
};

OutputControl::OutputControl(const std::string& socket)
    : m_connection(std::make_unique<Connection>(socket)) {}

OutputControl::~OutputControl() = default;

void OutputControl::setUp(std::size_t display, const OutputSetup& setup) {
    m_connection->setUp(display, setup);
}

} // namespace tessarel::plasmatest
