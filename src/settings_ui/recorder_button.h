#pragma once

#include "model/action_id.h"
#include "model/store.h"
#include "model/subscription.h"
#include "ports/local_keys_port.h"
#include "settings_ui/tab_context.h"

#include <QPushButton>
#include <QRect>
#include <QString>

#include <chrono>
#include <functional>

namespace tessarel {

/// Shows the hot key of an action and, once clicked, takes the next combination of keys for it.
///
/// Recording ends with Escape, with a combination that can be had, with another click, and when the button
/// loses the keyboard focus or is hidden. Whatever else is pressed meanwhile is told not to do, and waited
/// on.
class RecorderButton : public QPushButton {
public:
    /// How long a message stands in the place of the prompt.
    static constexpr std::chrono::milliseconds kFlashTime{1300};

    /// For the first action. What `context` refers to outlives the button.
    RecorderButton(QWidget& parent, const QRect& frame, const TabContext& context);

    /// Is about `newActionID` from now on. A recording ends.
    void configure(ActionID newActionID);
    [[nodiscard]] ActionID actionID() const { return m_actionID; }

    /// Shows the present hot key; does nothing while recording.
    void refresh();
    [[nodiscard]] bool isRecording() const { return m_isRecording; }

    /// Called after a new hot key has been stored; may be empty.
    std::function<void()> onChange;

protected:
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void toggleRecording();
    void startRecording();
    void stopRecording();
    void keyDown(const KeyDown& key);
    /// Shows `message` instead of the prompt for a moment.
    void flash(const QString& message);
    void setTitle(const QString& title);

    Store& m_store;
    const Ports& m_ports;
    ActionID m_actionID = ActionID::allCases.front();
    SubscriptionPtr m_monitor; ///< while recording
    bool m_isRecording = false;
};

} // namespace tessarel
