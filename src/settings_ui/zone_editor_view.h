#pragma once

#include "model/app_settings.h"
#include "settings_ui/zone_editing.h"
#include "settings_ui/zone_editor_picture.h"

#include <QWidget>

#include <functional>

namespace tessarel {

/// The picture of a screen in which the user selects, moves, resizes and disables zones.
///
/// It edits the zones of the settings in memory and never saves; its owner does, and redraws it by `update()`
/// after it has changed zones itself.
class ZoneEditorView : public QWidget {
public:
    /// `settings` must outlive the view.
    explicit ZoneEditorView(AppSettings& settings, QWidget* parent = nullptr);

    std::function<void(int)> onSelect; ///< another zone is selected, or the selected one disabled
    std::function<void()> onEdit;      ///< a zone has changed, the mouse still being down
    std::function<void()> onCommit;    ///< an edit is finished; also a click that moved nothing

    /// Position in the list of zones; any number is allowed.
    [[nodiscard]] int selected() const { return m_editing.selected; }
    void setSelected(int selected);

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
    void dragTo(const Point& point, ZoneEditing::Snapping snapping);
    void letGo();
    void disableSelected();
    void showGrip(const ZoneEditing::Grip& grip);
    void showKeyboardFocus(bool shows);
    [[nodiscard]] Size bounds() const { return {double(width()), double(height())}; }
    [[nodiscard]] ZoneEditorPicture picture() const;

    AppSettings& m_settings;
    ZoneEditing m_editing;
    bool m_showsKeyboardFocus = false;
};

} // namespace tessarel
