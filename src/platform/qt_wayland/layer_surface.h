// SPDX-License-Identifier: MIT

#pragma once

#include "platform/qt/overlay/translucent_figures.h"
#include "platform/qt_wayland/compositor_connection.h"
#include "platform/qt_wayland/surface_scale.h"
#include "ports/desktop/overlay_port.h"

#include <QColor>
#include <QRegion>
#include <QSize>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

struct zwlr_layer_surface_v1;

namespace tessarel::qt {

/// A surface that covers one display above everything else. It takes no input and no focus, and shows
/// figures.
class LayerSurface {
public:
    /// Shows the surface on `output` once the compositor has configured it. `connection` must be ready and
    /// outlive this object.
    LayerSurface(CompositorConnection& connection, const Output& output, const QColor& accent,
                 std::vector<OverlayFigure> figures);
    LayerSurface(const LayerSurface&) = delete;
    LayerSurface& operator=(const LayerSurface&) = delete;
    ~LayerSurface();

    /// Replaces the figures and repaints only what `changed` covers, and the labels of figures that touch it.
    void setFigures(const std::vector<OverlayFigure>& figures, const std::vector<Rect>& changed);

private:
    /// One of the two images that the compositor shows in turn.
    struct Buffer {
        wl_buffer* buffer = nullptr;
        std::byte* pixels = nullptr;
        bool isBusy = false; ///< the compositor reads it
        QRegion outdated;    ///< pixels that differ from the figures
    };

    void configure(std::uint32_t serial, QSize size);
    void resize();
    void makeBuffers(QSize size);
    void destroyBuffers();
    void paint();
    void paint(Buffer& buffer);
    void release(wl_buffer* buffer);
    [[nodiscard]] QRegion extents(const std::vector<Rect>& areas);

    static const wl_buffer_listener kBufferListener;

    CompositorConnection& m_connection;
    TranslucentFigures m_painted;
    std::vector<OverlayFigure> m_figures;   ///< in units
    std::vector<OverlayFigure> m_magnified; ///< the same in pixels
    wl_surface* m_surface;
    std::optional<SurfaceScale> m_scale; ///< destroyed before the surface
    zwlr_layer_surface_v1* m_layerSurface;
    QSize m_units; ///< size in units; empty before the surface is configured
    QSize m_size;  ///< size in pixels; empty before the surface is configured
    std::array<Buffer, 2> m_buffers;
    std::byte* m_memory = nullptr;
    std::size_t m_memorySize = 0;
    QRegion m_damage; ///< pixels that differ from what the compositor shows
};

} // namespace tessarel::qt
