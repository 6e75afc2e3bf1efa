// SPDX-License-Identifier: MIT

#pragma once

#include "model/carbon_mods.h"
#include "model/lifetime.h"
#include "model/signal.h"
#include "model/subscription.h"
#include "platform/wayland/bus_link.h"
#include "platform/wayland/drag_mouse.h"
#include "platform/wayland/mirror.h"
#include "ports/main_queue_port.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace tessarel::plasma {

/// The modifier keys that are held while the user moves a window, for those that a drag may wait for.
///
/// KWin tells other programs about no modifier. So each has an effect in KWin that is active while the key is
/// held, and the program reads which effects are active, again and again until the move ends. KWin supports
/// such effects only if it draws with OpenGL; otherwise no modifier is ever reported.
class DragModifiers : public wayland::DragKeys {
public:
    /// The effects are written to `dataFolder`, the user's folder for data. All referenced objects must
    /// outlive this one.
    DragModifiers(wayland::BusLink& link, wayland::Mirror& mirror, MainQueuePort& queue,
                  std::filesystem::path dataFolder);
    DragModifiers(const DragModifiers&) = delete;
    DragModifiers& operator=(const DragModifiers&) = delete;
    /// Unloads the effects. Their files stay, so that KWin finds them when the session starts.
    ~DragModifiers() override;

    /// Writes the effects as packages, the only form in which KWin loads them, to `kwin/effects` in
    /// `dataFolder`, where KWin looks for them. Returns false if that fails.
    static bool write(const std::filesystem::path& dataFolder);
    /// Writes and loads the effects, in place of those that an earlier run has left behind. Loads them again
    /// whenever KWin has set up its drawing anew, for which it drops them. Does not wait for KWin.
    void load();
    [[nodiscard]] ModifierFlags held() const override { return m_held; }
    void readAtEnd(std::function<void()> done) override;
    /// Calls `tried` with whether modifiers are reported: true for each effect that KWin has loaded, false
    /// when the attempts have ended without any.
    [[nodiscard]] SubscriptionPtr onTried(std::function<void(bool areReported)> tried);
    /// Calls `changed` when `held` has changed during a move or at its end.
    [[nodiscard]] SubscriptionPtr onChange(std::function<void()> changed);

private:
    using EffectsHandler = std::function<void(const std::vector<std::string>& names)>;

    void loadAnew();
    void tryToLoad(int attempts);
    void unload();
    void follow(const wayland::UserMove& move);
    void read();
    /// Calls `handler` with one of KWin's lists of effects; it is empty if KWin does not reply.
    void readEffects(const char* list, EffectsHandler handler);
    void apply(const std::vector<std::string>& activeEffects);

    wayland::BusLink& m_link;
    MainQueuePort& m_queue;
    std::filesystem::path m_dataFolder;
    bool m_areWritten = false;
    bool m_areKnown = false;  ///< whether KWin has found them
    bool m_areLoaded = false; ///< whether KWin supports them
    bool m_isMoving = false;
    bool m_isReading = false;
    ModifierFlags m_held = 0;
    Signal<bool> m_tried;
    Signal<> m_changed;
    Lifetime m_lifetime; // watched by replies
    SubscriptionPtr m_moves;
    SubscriptionPtr m_resets;
    SubscriptionPtr m_nextRead;
    SubscriptionPtr m_nextAttempt;
};

} // namespace tessarel::plasma
