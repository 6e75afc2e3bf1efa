// SPDX-License-Identifier: MIT

#pragma once

#include "model/signal.h"
#include "model/subscription.h"
#include "platform/qt/qt_main_queue.h"

#include <QPoint>

#include <cstdint>
#include <functional>
#include <list>
#include <wayland-client.h>

struct wp_fractional_scale_manager_v1;
struct wp_viewporter;
struct zwlr_layer_shell_v1;

namespace tessarel::qt {

/// A display of the compositor.
struct Output {
    std::uint32_t name = 0; ///< of the global object
    wl_output* output = nullptr;
    QPoint position = {}; ///< of the top-left corner, in the compositor's coordinates
    int scale = 1;        ///< pixels per unit, rounded up
    bool isKnown = false;
};

/// A connection to the Wayland compositor for surfaces of our own, beside Qt's. Never waits for the
/// compositor.
class CompositorConnection {
public:
    /// Connects to the compositor of the environment. Requires the application object. `queue` must outlive
    /// this object.
    explicit CompositorConnection(QtMainQueue& queue);
    CompositorConnection(const CompositorConnection&) = delete;
    CompositorConnection& operator=(const CompositorConnection&) = delete;
    ~CompositorConnection();

    /// Returns whether everything that a layer surface takes has been announced.
    [[nodiscard]] bool isReady() const;
    [[nodiscard]] wl_compositor* compositor() const { return m_compositor; }
    [[nodiscard]] wl_shm* sharedMemory() const { return m_sharedMemory; }
    [[nodiscard]] zwlr_layer_shell_v1* layerShell() const { return m_layerShell; }
    /// Returns what scales surfaces; null if the compositor does not.
    [[nodiscard]] wp_viewporter* viewporter() const { return m_viewporter; }
    /// Returns what tells the fractional scales of surfaces; null if the compositor tells none.
    [[nodiscard]] wp_fractional_scale_manager_v1* fractionalScales() const { return m_fractionalScales; }
    /// Returns the display with this top-left corner; null if there is none.
    [[nodiscard]] const Output* outputAt(const QPoint& position) const;
    /// Sends what has been requested.
    void flush();
    /// Calls `changed` when something has been announced or has gone.
    [[nodiscard]] SubscriptionPtr onChanged(std::function<void()> changed);

private:
    void read();
    void add(std::uint32_t name, const char* interface, std::uint32_t version);
    void remove(std::uint32_t name);

    static const wl_registry_listener kRegistryListener;
    static const wl_output_listener kOutputListener;

    wl_display* m_display; ///< null if there is no compositor
    bool m_isLost = false;
    wl_registry* m_registry = nullptr;
    wl_compositor* m_compositor = nullptr;
    wl_shm* m_sharedMemory = nullptr;
    zwlr_layer_shell_v1* m_layerShell = nullptr;
    wp_viewporter* m_viewporter = nullptr;
    wp_fractional_scale_manager_v1* m_fractionalScales = nullptr;
    std::list<Output> m_outputs;
    Signal<> m_changed;
    SubscriptionPtr m_events;
};

} // namespace tessarel::qt
