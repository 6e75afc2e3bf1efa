// SPDX-License-Identifier: MIT

#pragma once

#include "model/settings/app_settings.h"
#include "settings_ui/editor/zone_editing.h"
#include "settings_ui/editor/zone_editor_picture.h"

#include <QWidget>

#include <functional>

namespace tessarel {

/// A picture of the screen in which the user selects, moves, resizes and disables zones.
///
/// The view edits the zones of the settings in memory and never saves. Its owner saves them, and calls
/// `zonesChanged()` after changing zones itself. For screen readers the description of the view lists the
/// zones.
class ZoneEditorView : public QWidget {
public:
    /// `settings` must outlive the view.
    explicit ZoneEditorView(AppSettings& settings, QWidget* parent = nullptr);

    // Callbacks; each of them may be empty.

    /// Called with the position of the selected zone after another zone has been selected, or the selected
    /// one has been disabled.
    std::function<void(int)> onSelect;
    /// Called after each change of a zone during a drag.
    std::function<void()> onEdit;
    /// Called after the end of a drag, even if nothing has moved, and after a zone has been disabled.
    std::function<void()> onCommit;

    /// Returns the position of the selected zone, which need not be in the list.
    [[nodiscard]] int selected() const { return m_editing.selected; }
    /// Selects a zone without calling `onSelect`, and shows the current zones.
    void setSelected(int selected);

    /// Shows the current zones.
    void zonesChanged();

    /// Disables the selected zone, which keeps its position and numbers, as the Delete key does. Does nothing
    /// if the selection is not in the list.
    void disableSelected();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    /// Updates the description, of which screen readers are notified if it differs.
    void describeZones();
    /// Applies the drag up to `point` and repaints the zone.
    void dragTo(const Point& point, ZoneEditing::Snapping snapping);
    /// Ends the drag, if there is one.
    void letGo();
    /// Shows the cursor for what a press would do, or for the drag in progress.
    void showGrip(const ZoneEditing::Grip& grip);
    void showKeyboardFocus(bool shows);
    [[nodiscard]] Size bounds() const { return {double(width()), double(height())}; }
    [[nodiscard]] ZoneEditorPicture picture() const;

    AppSettings& m_settings;
    ZoneEditing m_editing;
    bool m_showsKeyboardFocus = false;
};

} // namespace tessarel
