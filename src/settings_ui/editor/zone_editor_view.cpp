// SPDX-License-Identifier: MIT

#include "settings_ui/editor/zone_editor_view.h"

#include "look/box.h"
#include "look/palette.h"
#include "settings_ui/kit/kit.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QCursor>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QString>
#include <QStringList>

#include <cstddef>

namespace tessarel {

namespace {

using Mode = ZoneEditing::Mode;
using Snapping = ZoneEditing::Snapping;

/// Returns the position of the pointer, exact to the device pixel. Qt rounds the position in a widget to
/// device-independent pixels, but not that in the window, whose fraction is added here.
Point pointOf(const QMouseEvent& event) {
    const QPointF whole(event.position().toPoint());
    const QPointF inWindow = event.scenePosition();
    const QPointF point =
        event.position() == whole ? whole + inWindow - QPointF(inWindow.toPoint()) : event.position();
    return {point.x(), point.y()};
}

/// Returns the cursor for resizing by `edges`, at least one of which must be set.
Qt::CursorShape cursorFor(const ZoneEdges& edges) {
    if (!edges.top && !edges.bottom)
        return Qt::SizeHorCursor;
    if (!edges.left && !edges.right)
        return Qt::SizeVerCursor;
    return edges.left == edges.top ? Qt::SizeFDiagCursor : Qt::SizeBDiagCursor;
}

/// Makes a zone editor a picture for screen readers, which would take a bare widget for empty space. Returns
/// null for all other objects; Qt then uses its own factories.
QAccessibleInterface* makeAccessible(const QString& /*className*/, QObject* object) {
    auto* const view = dynamic_cast<ZoneEditorView*>(object);
    return view ? new QAccessibleWidget(view, QAccessible::Graphic) : nullptr;
}

/// Returns the place of a zone as text, its number counted from 1.
QString description(const Zone& zone, std::size_t number) {
    return QStringLiteral("Zone %1: left %2 %, top %3 %, %4 % wide, %5 % high")
        .arg(QString::number(number), fmtNum(zone.x), fmtNum(zone.y), fmtNum(zone.w), fmtNum(zone.h));
}

/// Calls `callback` unless it is empty.
template <class... Arguments>
void call(const std::function<void(Arguments...)>& callback, Arguments... arguments) {
    if (callback)
        callback(arguments...);
}

} // namespace

ZoneEditorView::ZoneEditorView(AppSettings& settings, QWidget* parent)
    : QWidget(parent), m_settings(settings), m_editing(settings) {
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true); // the cursor changes while no button is pressed, too
    setAttribute(Qt::WA_OpaquePaintEvent);
    QAccessible::installFactory(makeAccessible); // Qt ignores a factory that is installed already
    setAccessibleName(QStringLiteral("Zones"));
    describeZones();
}

void ZoneEditorView::setSelected(int selected) {
    m_editing.selected = selected;
    zonesChanged();
}

void ZoneEditorView::zonesChanged() {
    update();
    describeZones();
}

void ZoneEditorView::describeZones() {
    QStringList zones;
    for (std::size_t number = 1; const Zone& zone : m_settings.zones) {
        if (zone.enabled)
            zones.append(description(zone, number));
        ++number;
    }
    setAccessibleDescription(zones.isEmpty() ? QStringLiteral("No zones") : zones.join(QStringLiteral(". ")));
}

ZoneEditorPicture ZoneEditorView::picture() const {
    return {m_settings.zones, m_editing.selected, QSizeF(size()), palette()};
}

void ZoneEditorView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return QWidget::mousePressEvent(event);
    setFocus(Qt::MouseFocusReason);
    const bool selectsAnother = m_editing.press(pointOf(*event), bounds());
    showGrip(m_editing.grip());
    if (!selectsAnother)
        return;
    update();
    call(onSelect, selected());
}

void ZoneEditorView::mouseMoveEvent(QMouseEvent* event) {
    if (!event->buttons().testFlag(Qt::LeftButton))
        letGo(); // the release was lost
    if (m_editing.grip().mode == Mode::None)
        return showGrip(m_editing.gripAt(pointOf(*event), bounds()));
    dragTo(pointOf(*event), event->modifiers().testFlag(Qt::ShiftModifier) ? Snapping::Off : Snapping::On);
}

void ZoneEditorView::dragTo(const Point& point, Snapping snapping) {
    const Zone* const zone = m_editing.selectedZone();
    // Only the old and the new area of the zone are repainted.
    const QRectF before = zone ? picture().extent(*zone) : QRectF();
    if (!m_editing.drag(point, bounds(), snapping))
        return;
    update(before.united(picture().extent(*m_editing.selectedZone())).toAlignedRect());
    describeZones();
    call(onEdit);
}

void ZoneEditorView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return QWidget::mouseReleaseEvent(event);
    letGo();
    showGrip(m_editing.gripAt(pointOf(*event), bounds()));
}

void ZoneEditorView::letGo() {
    if (m_editing.release())
        call(onCommit);
}

void ZoneEditorView::hideEvent(QHideEvent* event) {
    letGo(); // a hidden view gets no release
    QWidget::hideEvent(event);
}

void ZoneEditorView::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Backspace && event->key() != Qt::Key_Delete)
        return QWidget::keyPressEvent(event);
    disableSelected();
}

void ZoneEditorView::disableSelected() {
    if (!m_editing.disableSelected())
        return;
    zonesChanged();
    call(onCommit);
    call(onSelect, selected());
}

void ZoneEditorView::showGrip(const ZoneEditing::Grip& grip) {
    // The open hand shows that a zone can be moved, the closed one that it is being moved.
    if (grip.mode == Mode::Resize)
        return setCursor(cursorFor(grip.edges));
    if (grip.mode == Mode::None)
        return unsetCursor();
    setCursor(m_editing.grip().mode == Mode::Move ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
}

/// Shows the focus only after Tab or Shift+Tab: a click shows by itself where the focus is.
void ZoneEditorView::focusInEvent(QFocusEvent* event) {
    const Qt::FocusReason reason = event->reason();
    showKeyboardFocus(reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason);
}

void ZoneEditorView::focusOutEvent(QFocusEvent* /*event*/) {
    showKeyboardFocus(false);
}

void ZoneEditorView::showKeyboardFocus(bool shows) {
    m_showsKeyboardFocus = shows;
    update();
}

void ZoneEditorView::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    picture().draw(painter, QRectF(event->rect()));
    if (m_showsKeyboardFocus)
        paintBox(painter, rect(), {.line = accentLine(palette()), .lineWidth = kFocusWidth, .radius = 0});
}

} // namespace tessarel
