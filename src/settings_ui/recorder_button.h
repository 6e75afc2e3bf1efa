// SPDX-License-Identifier: MIT

#pragma once

#include "engine/hot_keys.h"
#include "model/action_id.h"
#include "model/settings/store.h"
#include "model/subscription.h"
#include "ports/desktop/local_keys_port.h"
#include "settings_ui/tab_context.h"

#include <QPushButton>
#include <QRect>
#include <QString>

#include <chrono>
#include <functional>

namespace tessarel {

/// A button that shows the hot key of an action and, once clicked, records a new one.
///
/// A combination that another program has is marked by its colour, and in tooltip and accessible description.
///
/// Recording ends with an acceptable combination, with Escape, with another click, and when the button loses
/// the keyboard focus or is hidden. Any other key or combination is rejected with a message, and recording
/// goes on.
class RecorderButton : public QPushButton {
public:
    /// How long a message replaces the prompt.
    static constexpr std::chrono::milliseconds kFlashTime{1300};

    /// Shows the first action until `configure` is called. Everything that `context` refers to must outlive
    /// the button.
    RecorderButton(QWidget& parent, const QRect& frame, const TabContext& context);

    /// Switches to the action `newActionID`. Ends a recording without a change.
    void configure(ActionID newActionID);
    [[nodiscard]] ActionID actionID() const { return m_actionID; }

    /// Shows the current hot key. Does nothing while recording.
    void refresh();
    [[nodiscard]] bool isRecording() const { return m_isRecording; }

    /// Called after a new hot key has been saved; may be empty.
    std::function<void()> onChange;

protected:
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void initStyleOption(QStyleOptionButton* option) const override;

private:
    void toggleRecording();
    void startRecording();
    void stopRecording();
    /// Handles a key that was pressed while recording: saves the combination, rejects it, or cancels
    /// (Escape).
    void keyDown(const KeyDown& key);
    /// Shows `message` instead of the prompt for `kFlashTime`.
    void flash(const QString& message);
    void setTitle(const QString& title);

    void markAsTaken();

    Store& m_store;
    const HotKeys& m_hotKeys;
    const Ports& m_ports;
    ActionID m_actionID = ActionID::allCases.front();
    SubscriptionPtr m_renamedKeys;
    SubscriptionPtr m_takenObserver;
    SubscriptionPtr m_monitor; ///< not null while recording
    SubscriptionPtr m_message; ///< not null while a message is shown; restores the prompt
    bool m_isRecording = false;
    bool m_showsTaken = false; ///< whether the combination that is shown is marked
};

} // namespace tessarel
