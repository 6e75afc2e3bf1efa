// SPDX-License-Identifier: MIT

#include "platform/qt_wayland/compositor_connection.h"

#include <algorithm>
#include <fractional-scale-v1-client.h>
#include <layer-shell-client.h>
#include <string_view>
#include <viewporter-client.h>

namespace tessarel::qt {

namespace {

/// With this version, outputs tell their scale and when a description of them is complete.
constexpr std::uint32_t kOutputVersion = 2;
/// With this version, surfaces have a scale and damage in pixels.
constexpr std::uint32_t kCompositorVersion = 4;

Output& outputOf(void* data) {
    return *static_cast<Output*>(data);
}

} // namespace

const wl_registry_listener CompositorConnection::kRegistryListener{
    [](void* data, wl_registry*, std::uint32_t name, const char* interface, std::uint32_t version) {
        static_cast<CompositorConnection*>(data)->add(name, interface, version);
    },
    [](void* data, wl_registry*, std::uint32_t name) {
        static_cast<CompositorConnection*>(data)->remove(name);
    }};

const wl_output_listener CompositorConnection::kOutputListener{
    .geometry = [](void* data, wl_output*, std::int32_t x, std::int32_t y, std::int32_t, std::int32_t,
                   std::int32_t, const char*, const char*,
                   std::int32_t) { outputOf(data).position = QPoint(x, y); },
    .mode = [](void*, wl_output*, std::uint32_t, std::int32_t, std::int32_t, std::int32_t) {},
    .done = [](void* data, wl_output*) { outputOf(data).isKnown = true; },
    .scale = [](void* data, wl_output*, std::int32_t scale) { outputOf(data).scale = scale; },
    .name = [](void*, wl_output*, const char*) {},
    .description = [](void*, wl_output*, const char*) {},
};

CompositorConnection::CompositorConnection(QtMainQueue& queue) : m_display(wl_display_connect(nullptr)) {
    if (m_display == nullptr)
        return;
    m_registry = wl_display_get_registry(m_display);
    wl_registry_add_listener(m_registry, &kRegistryListener, this);
    m_events = queue.onReadable(wl_display_get_fd(m_display), [this] { read(); });
    flush();
}

CompositorConnection::~CompositorConnection() {
    m_events.reset();
    for (const Output& output : m_outputs)
        wl_output_destroy(output.output);
    if (m_fractionalScales != nullptr)
        wp_fractional_scale_manager_v1_destroy(m_fractionalScales);
    if (m_viewporter != nullptr)
        wp_viewporter_destroy(m_viewporter);
    if (m_layerShell != nullptr)
        zwlr_layer_shell_v1_destroy(m_layerShell);
    if (m_sharedMemory != nullptr)
        wl_shm_destroy(m_sharedMemory);
    if (m_compositor != nullptr)
        wl_compositor_destroy(m_compositor);
    if (m_registry != nullptr)
        wl_registry_destroy(m_registry);
    if (m_display != nullptr)
        wl_display_disconnect(m_display);
}

/// Reads what has arrived. The descriptor is readable, so nothing waits.
void CompositorConnection::read() {
    while (wl_display_prepare_read(m_display) != 0)
        wl_display_dispatch_pending(m_display);
    if (wl_display_read_events(m_display) < 0 || wl_display_dispatch_pending(m_display) < 0) {
        // The objects stay until the owners of surfaces have destroyed these.
        m_isLost = true;
        m_events.reset();
    }
    m_changed.send();
    flush();
}

void CompositorConnection::flush() {
    if (m_display != nullptr)
        wl_display_flush(m_display);
}

bool CompositorConnection::isReady() const {
    return !m_isLost && m_compositor != nullptr && m_sharedMemory != nullptr && m_layerShell != nullptr;
}

const Output* CompositorConnection::outputAt(const QPoint& position) const {
    const auto found = std::find_if(m_outputs.begin(), m_outputs.end(), [&](const Output& output) {
        return output.isKnown && output.position == position;
    });
    return found == m_outputs.end() ? nullptr : &*found;
}

SubscriptionPtr CompositorConnection::onChanged(std::function<void()> changed) {
    return m_changed.connect(std::move(changed));
}

void CompositorConnection::add(std::uint32_t name, const char* interface, std::uint32_t version) {
    const auto bind = [&](const wl_interface& wanted, std::uint32_t wantedVersion) {
        return interface == std::string_view(wanted.name) && version >= wantedVersion
                   ? wl_registry_bind(m_registry, name, &wanted, wantedVersion)
                   : nullptr;
    };
    if (void* const compositor = bind(wl_compositor_interface, kCompositorVersion))
        m_compositor = static_cast<wl_compositor*>(compositor);
    else if (void* const memory = bind(wl_shm_interface, 1))
        m_sharedMemory = static_cast<wl_shm*>(memory);
    else if (void* const shell = bind(zwlr_layer_shell_v1_interface, 1))
        m_layerShell = static_cast<zwlr_layer_shell_v1*>(shell);
    else if (void* const viewporter = bind(wp_viewporter_interface, 1))
        m_viewporter = static_cast<wp_viewporter*>(viewporter);
    else if (void* const scales = bind(wp_fractional_scale_manager_v1_interface, 1))
        m_fractionalScales = static_cast<wp_fractional_scale_manager_v1*>(scales);
    else if (void* const output = bind(wl_output_interface, kOutputVersion)) {
        m_outputs.push_back({.name = name, .output = static_cast<wl_output*>(output)});
        wl_output_add_listener(m_outputs.back().output, &kOutputListener, &m_outputs.back());
    }
}

void CompositorConnection::remove(std::uint32_t name) {
    std::erase_if(m_outputs, [name](const Output& output) {
        if (output.name == name)
            wl_output_destroy(output.output);
        return output.name == name;
    });
}

} // namespace tessarel::qt
