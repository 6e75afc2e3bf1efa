#include "settings_ui/zone_editor_view.h"

#include "settings_ui/kit.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QCursor>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>

namespace tessarel {

namespace {

using Mode = ZoneEditing::Mode;
using Snapping = ZoneEditing::Snapping;

Point pointOf(const QMouseEvent& event) {
    return {event.position().x(), event.position().y()};
}

Qt::CursorShape cursorFor(const ZoneEdges& edges) {
    if (!edges.top && !edges.bottom)
        return Qt::SizeHorCursor;
    if (!edges.left && !edges.right)
        return Qt::SizeVerCursor;
    return edges.left == edges.top ? Qt::SizeFDiagCursor : Qt::SizeBDiagCursor;
}

/// To a screen reader a bare widget is empty space; this one is a picture.
QAccessibleInterface* makeAccessible(const QString& /*className*/, QObject* object) {
    auto* const view = dynamic_cast<ZoneEditorView*>(object);
    return view ? new QAccessibleWidget(view, QAccessible::Graphic) : nullptr;
}

template <class... Arguments>
void call(const std::function<void(Arguments...)>& callback, Arguments... arguments) {
    if (callback)
        callback(arguments...);
}

} // namespace

ZoneEditorView::ZoneEditorView(AppSettings& settings, QWidget* parent)
    : QWidget(parent), m_settings(settings), m_editing(settings) {
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true); // for the shape of the pointer
    setAttribute(Qt::WA_OpaquePaintEvent);
    QAccessible::installFactory(
        makeAccessible); // once for all views, and before this one is first asked about
    setAccessibleName(QStringLiteral("Zones"));
}

void ZoneEditorView::setSelected(int selected) {
    m_editing.selected = selected;
    update();
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
        letGo(); // the release has been lost
    if (m_editing.grip().mode == Mode::None)
        return showGrip(m_editing.gripAt(pointOf(*event), bounds()));
    dragTo(pointOf(*event), event->modifiers().testFlag(Qt::ShiftModifier) ? Snapping::Off : Snapping::On);
}

void ZoneEditorView::dragTo(const Point& point, Snapping snapping) {
    const Zone* const zone = m_editing.selectedZone();
    const QRectF before = zone ? picture().extent(*zone) : QRectF();
    if (!m_editing.drag(point, bounds(), snapping))
        return;
    update(before.united(picture().extent(*m_editing.selectedZone())).toAlignedRect());
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
    letGo(); // no release will come
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
    update();
    call(onCommit);
    call(onSelect, selected());
}

void ZoneEditorView::showGrip(const ZoneEditing::Grip& grip) {
    if (grip.mode == Mode::Resize)
        return setCursor(cursorFor(grip.edges));
    if (grip.mode == Mode::None)
        return unsetCursor();
    setCursor(m_editing.grip().mode == Mode::Move ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
}

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
    if (!m_showsKeyboardFocus)
        return;
    painter.setPen(QPen(controlAccentColor(palette()), 2, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(QRectF(rect()).adjusted(1, 1, -1, -1));
}

} // namespace tessarel
