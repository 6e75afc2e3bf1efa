// SPDX-License-Identifier: MIT

#include "platform/qt_wayland/layer_surface.h"

#include "platform/qt/overlay/overlay_pixels.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <bit>
#include <cmath>
#include <layer-shell-client.h>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace tessarel::qt {

namespace {

constexpr int kBytesPerPixel = 4;

Rect magnified(const Rect& rect, double scale) {
    if (rect.isNull())
        return rect;
    return {rect.x * scale, rect.y * scale, rect.width * scale, rect.height * scale};
}

/// Returns the rectangle in whole pixels. Rectangles that touch in units also touch in pixels.
Rect onPixels(const Rect& rect, double scale) {
    const Rect exact = magnified(rect, scale);
    const double left = std::round(exact.minX());
    const double top = std::round(exact.minY());
    return {left, top, std::round(exact.maxX()) - left, std::round(exact.maxY()) - top};
}

/// Converts a figure from units to pixels, so that its edges are between pixels. The font size stays in
/// points, because `TranslucentFigures` scales it when it paints.
OverlayFigure magnified(OverlayFigure figure, double scale) {
    const double inset = std::ceil((figure.shape.minX() - figure.bounds.minX()) * scale);
    figure.bounds = onPixels(figure.bounds, scale);
    figure.shape = figure.shape.isNull() ? figure.shape : figure.bounds.inset(inset, inset);
    figure.cornerRadius = std::round(figure.cornerRadius * scale);
    figure.strokeWidth *= scale;
    figure.label.center = {figure.label.center.x * scale, figure.label.center.y * scale};
    return figure;
}

std::vector<OverlayFigure> magnified(std::vector<OverlayFigure> figures, double scale) {
    for (OverlayFigure& figure : figures)
        figure = magnified(std::move(figure), scale);
    return figures;
}

} // namespace

const wl_buffer_listener LayerSurface::kBufferListener{
    [](void* data, wl_buffer* buffer) { static_cast<LayerSurface*>(data)->release(buffer); }};

LayerSurface::LayerSurface(CompositorConnection& connection, const Output& output, const QColor& accent,
                           std::vector<OverlayFigure> figures)
    : m_connection(connection), m_painted(accent), m_figures(std::move(figures)),
      m_surface(wl_compositor_create_surface(connection.compositor())),
      m_layerSurface(zwlr_layer_shell_v1_get_layer_surface(connection.layerShell(), m_surface, output.output,
                                                           ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY,
                                                           "tessarel-zones")) {
    static constexpr zwlr_layer_surface_v1_listener kListener{
        [](void* data, zwlr_layer_surface_v1*, std::uint32_t serial, std::uint32_t width,
           std::uint32_t height) {
            static_cast<LayerSurface*>(data)->configure(
                serial, QSize(static_cast<int>(width), static_cast<int>(height)));
        },
        [](void*, zwlr_layer_surface_v1*) {}};
    zwlr_layer_surface_v1_add_listener(m_layerSurface, &kListener, this);
    constexpr std::uint32_t kAllEdges =
        ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM |
        ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT | ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT;
    zwlr_layer_surface_v1_set_anchor(m_layerSurface, kAllEdges);
    constexpr std::int32_t kOverPanels = -1;
    zwlr_layer_surface_v1_set_exclusive_zone(m_layerSurface, kOverPanels);
    zwlr_layer_surface_v1_set_keyboard_interactivity(m_layerSurface, 0);
    wl_region* const nothing = wl_compositor_create_region(connection.compositor());
    wl_surface_set_input_region(m_surface, nothing);
    wl_region_destroy(nothing);
    m_scale.emplace(m_connection, m_surface, output, [this] { resize(); });
    m_magnified = magnified(m_figures, m_scale->pixelsPerUnit());
    wl_surface_commit(m_surface);
    m_connection.flush();
}

LayerSurface::~LayerSurface() {
    destroyBuffers();
    zwlr_layer_surface_v1_destroy(m_layerSurface);
    m_scale.reset();
    wl_surface_destroy(m_surface);
    m_connection.flush();
}

void LayerSurface::setFigures(const std::vector<OverlayFigure>& figures, const std::vector<Rect>& changed) {
    // Labels may reach beyond `changed`, in their old state as well as in the new one.
    QRegion region = extents(changed);
    m_figures = figures;
    m_magnified = magnified(figures, m_scale->pixelsPerUnit());
    region += extents(changed);
    for (Buffer& buffer : m_buffers)
        buffer.outdated += region;
    m_damage += region;
    paint();
}

void LayerSurface::configure(std::uint32_t serial, QSize size) {
    zwlr_layer_surface_v1_ack_configure(m_layerSurface, serial);
    m_units = size;
    resize();
}

/// Takes the size in units and the scale that the compositor wants.
void LayerSurface::resize() {
    if (m_units.isEmpty())
        return;
    m_scale->setSurfaceSize(m_units);
    m_magnified = magnified(m_figures, m_scale->pixelsPerUnit());
    if (const QSize size = m_scale->imageSize(m_units); size != m_size)
        makeBuffers(size);
    paint();
}

void LayerSurface::makeBuffers(QSize size) {
    destroyBuffers();
    const int stride = size.width() * kBytesPerPixel;
    const std::size_t bytes = static_cast<std::size_t>(stride) * static_cast<std::size_t>(size.height());
    const int file = ::memfd_create("tessarel-overlay", MFD_CLOEXEC);
    if (file < 0)
        return;
    m_memorySize = m_buffers.size() * bytes;
    if (::ftruncate(file, static_cast<off_t>(m_memorySize)) == 0) {
        void* const memory = ::mmap(nullptr, m_memorySize, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
        m_memory = memory == MAP_FAILED ? nullptr : static_cast<std::byte*>(memory);
    }
    if (m_memory != nullptr) {
        m_size = size;
        m_damage = QRegion(QRect(QPoint(), size));
        wl_shm_pool* const pool =
            wl_shm_create_pool(m_connection.sharedMemory(), file, static_cast<std::int32_t>(m_memorySize));
        std::size_t offset = 0;
        for (Buffer& buffer : m_buffers) {
            buffer.buffer = wl_shm_pool_create_buffer(pool, static_cast<std::int32_t>(offset), size.width(),
                                                      size.height(), stride, WL_SHM_FORMAT_ARGB8888);
            wl_buffer_add_listener(buffer.buffer, &kBufferListener, this);
            buffer.pixels = m_memory + offset;
            buffer.outdated = m_damage;
            offset += bytes;
        }
        wl_shm_pool_destroy(pool);
    }
    ::close(file);
}

void LayerSurface::destroyBuffers() {
    for (Buffer& buffer : m_buffers) {
        if (buffer.buffer != nullptr)
            wl_buffer_destroy(buffer.buffer);
        buffer = {};
    }
    if (m_memory != nullptr)
        ::munmap(std::exchange(m_memory, nullptr), m_memorySize);
    m_size = {};
}

/// Shows the figures, or does so when the compositor gives a buffer back.
void LayerSurface::paint() {
    if (m_size.isEmpty() || m_damage.isEmpty())
        return;
    const auto free =
        std::find_if(m_buffers.begin(), m_buffers.end(), [](const Buffer& buffer) { return !buffer.isBusy; });
    if (free == m_buffers.end())
        return;
    paint(*free);
    wl_surface_attach(m_surface, free->buffer, 0, 0);
    for (const QRect& part : m_damage)
        wl_surface_damage_buffer(m_surface, part.x(), part.y(), part.width(), part.height());
    wl_surface_commit(m_surface);
    free->isBusy = true;
    m_damage = {};
    m_connection.flush();
}

void LayerSurface::paint(Buffer& buffer) {
    QImage image(std::bit_cast<uchar*>(buffer.pixels), m_size.width(), m_size.height(),
                 qsizetype{m_size.width()} * kBytesPerPixel, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    painter.setClipRegion(buffer.outdated);
    painter.setCompositionMode(QPainter::CompositionMode_Clear);
    painter.fillRect(buffer.outdated.boundingRect(), Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    m_painted.paintAll(painter, m_magnified, buffer.outdated, m_scale->pixelsPerUnit(), true);
    buffer.outdated = {};
}

void LayerSurface::release(wl_buffer* buffer) {
    for (Buffer& one : m_buffers) {
        if (one.buffer == buffer)
            one.isBusy = false;
    }
    paint();
}

/// Returns `areas` in pixels, with the labels that touch them, within the surface.
QRegion LayerSurface::extents(const std::vector<Rect>& areas) {
    QRegion region;
    const double scale = m_scale->pixelsPerUnit();
    for (const Rect& area : areas)
        region += pixels(magnified(area, scale));
    std::vector<QRect> labels;
    for (const OverlayFigure& figure : m_magnified)
        labels.push_back(m_painted.labelExtent(figure, scale));
    return withLabels(region, labels).intersected(QRect(QPoint(), m_size));
}

} // namespace tessarel::qt
