// SPDX-License-Identifier: MIT

#include "platform/qt_wayland/surface_scale.h"

#include <algorithm>
#include <cstdint>
#include <fractional-scale-v1-client.h>
#include <utility>
#include <viewporter-client.h>

namespace tessarel::qt {

SurfaceScale::SurfaceScale(const CompositorConnection& connection, wl_surface* surface, const Output& output,
                           std::function<void()> changed)
    : m_changed(std::move(changed)), m_pixelsPerUnit(std::max(output.scale, 1)) {
    if (connection.viewporter() == nullptr || connection.fractionalScales() == nullptr) {
        wl_surface_set_buffer_scale(surface, std::max(output.scale, 1));
        return;
    }
    static constexpr wp_fractional_scale_v1_listener kListener{
        [](void* data, wp_fractional_scale_v1*, std::uint32_t scale) {
            constexpr double kUnit = 120;
            static_cast<SurfaceScale*>(data)->prefer(scale / kUnit);
        }};
    m_viewport = wp_viewporter_get_viewport(connection.viewporter(), surface);
    m_preference =
        wp_fractional_scale_manager_v1_get_fractional_scale(connection.fractionalScales(), surface);
    wp_fractional_scale_v1_add_listener(m_preference, &kListener, this);
}

SurfaceScale::~SurfaceScale() {
    if (m_preference != nullptr)
        wp_fractional_scale_v1_destroy(m_preference);
    if (m_viewport != nullptr)
        wp_viewport_destroy(m_viewport);
}

QSize SurfaceScale::imageSize(QSize surface) const {
    return {qRound(surface.width() * m_pixelsPerUnit), qRound(surface.height() * m_pixelsPerUnit)};
}

void SurfaceScale::setSurfaceSize(QSize surface) {
    if (m_viewport != nullptr)
        wp_viewport_set_destination(m_viewport, surface.width(), surface.height());
}

void SurfaceScale::prefer(double pixelsPerUnit) {
    if (std::exchange(m_pixelsPerUnit, pixelsPerUnit) != pixelsPerUnit)
        m_changed();
}

} // namespace tessarel::qt
