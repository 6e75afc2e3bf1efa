// SPDX-License-Identifier: MIT

#pragma once

#include "platform/qt_wayland/compositor_connection.h"

#include <QSize>

#include <functional>

struct wp_fractional_scale_v1;
struct wp_viewport;

namespace tessarel::qt {

/// The number of pixels per unit that a surface has, so that one of its pixels is one of the display. Where
/// the compositor announces fractional scales, it is the very scale of the display, otherwise the next whole
/// number.
class SurfaceScale {
public:
    /// Calls `changed` when the compositor wants another number. `connection`, which must be ready, and
    /// `surface` must outlive this object.
    SurfaceScale(const CompositorConnection& connection, wl_surface* surface, const Output& output,
                 std::function<void()> changed);
    SurfaceScale(const SurfaceScale&) = delete;
    SurfaceScale& operator=(const SurfaceScale&) = delete;
    ~SurfaceScale();

    [[nodiscard]] double pixelsPerUnit() const { return m_pixelsPerUnit; }
    /// Returns the size in pixels of an image for a surface of this size.
    [[nodiscard]] QSize imageSize(QSize surface) const;
    /// Tells the compositor the size of the surface, in units. Takes effect with the next commit.
    void setSurfaceSize(QSize surface);

private:
    void prefer(double pixelsPerUnit);

    std::function<void()> m_changed;
    double m_pixelsPerUnit;
    wp_viewport* m_viewport = nullptr; ///< null without fractional scales, like the next member
    wp_fractional_scale_v1* m_preference = nullptr;
};

} // namespace tessarel::qt
