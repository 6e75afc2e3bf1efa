// SPDX-License-Identifier: MIT

#include "platform/plasma/drag_modifiers.h"

#include "platform/plasma/scripts.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <fstream>
#include <system_error>
#include <utility>

namespace tessarel::plasma {

namespace {

namespace fs = std::filesystem;

/// Time between two reads of the modifiers during a move: about one frame.
constexpr std::chrono::milliseconds kReadInterval{16};

/// In its first 30 s KWin finds no effect that has been written since it started.
constexpr std::chrono::seconds kEffectLoadInterval{4};
constexpr int kEffectLoadAttempts = 10;

/// A modifier that a drag may wait for.
struct Modifier {
    ModifierFlags flag;
    const char* effect;     ///< name of its effect
    const char* qtModifier; ///< Qt's number
};

constexpr std::array kModifiers = std::to_array<Modifier>({
    {kShiftFlag, "tessarel_shift", "0x02000000"},
    {kControlFlag, "tessarel_control", "0x04000000"},
    {kCommandFlag, "tessarel_meta", "0x10000000"},
});

constexpr const char* kService = "org.kde.KWin";
constexpr const char* kEffects = "org.kde.kwin.Effects";

wayland::BusCall effects(std::string interface, std::string member, std::string signature,
                         std::vector<wayland::BusValue> values) {
    return {kService,          "/Effects",           std::move(interface),
            std::move(member), std::move(signature), std::move(values)};
}

std::string metadata(const std::string& effect) {
    return R"({ "KPackageStructure": "KWin/Effect", "X-Plasma-API": "javascript",
  "X-Plasma-MainScript": "code/main.js",
  "KPlugin": { "Id": ")" +
           effect + R"(", "Name": "Tessarel: modifier keys while a window is moved",
    "Category": "Tools", "EnabledByDefault": false, "License": "MIT", "Version": "1" } }
)";
}

std::string code(const Modifier& modifier) {
    std::string text = kModifierEffect;
    const std::string placeholder = "@MODIFIER@";
    return text.replace(text.find(placeholder), placeholder.size(), modifier.qtModifier);
}

bool contains(const std::vector<std::string>& effects, const char* effect) {
    return std::find(effects.begin(), effects.end(), effect) != effects.end();
}

bool writeFile(const fs::path& file, const std::string& text) {
    std::error_code failure;
    fs::create_directories(file.parent_path(), failure);
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out << text;
    return static_cast<bool>(out.flush());
}

} // namespace

DragModifiers::DragModifiers(wayland::BusLink& link, wayland::Mirror& mirror, MainQueuePort& queue,
                             fs::path dataFolder)
    : m_link(link), m_queue(queue), m_dataFolder(std::move(dataFolder)),
      m_moves(mirror.onMove([this](const wayland::UserMove& move) { follow(move); })) {}

DragModifiers::~DragModifiers() {
    if (m_areWritten)
        unload();
}

bool DragModifiers::write(const fs::path& dataFolder) {
    return std::all_of(kModifiers.begin(), kModifiers.end(), [&](const Modifier& modifier) {
        const fs::path package = dataFolder / "kwin" / "effects" / modifier.effect;
        return writeFile(package / "metadata.json", metadata(modifier.effect)) &&
               writeFile(package / "contents" / "code" / "main.js", code(modifier));
    });
}

void DragModifiers::load() {
    m_areWritten = m_dataFolder.is_absolute() && write(m_dataFolder);
    if (!m_areWritten)
        return;
    // KWin drops its effects after a graphics reset, or when the user changes how it draws.
    m_resets = m_link.onSignal({kService, "/Compositor", "org.kde.kwin.Compositing", "compositingToggled"},
                               [this](const wayland::BusMessage& signal) {
                                   const bool isDrawing = signal.value<std::int64_t>(0) != 0;
                                   if (isDrawing)
                                       loadAnew();
                               });
    loadAnew();
}

void DragModifiers::loadAnew() {
    unload(); // KWin refuses to load an effect that is loaded
    m_areLoaded = false;
    tryToLoad(kEffectLoadAttempts);
}

void DragModifiers::tryToLoad(int attempts) {
    const auto loaded = [this, alive = m_lifetime.watch()](const wayland::BusMessage& reply) {
        if (alive.expired() || reply.value<std::int64_t>(0) == 0)
            return;
        m_areLoaded = true;
        m_tried.send(true);
    };
    readEffects("listOfEffects", [this](const std::vector<std::string>& known) {
        m_areKnown = contains(known, kModifiers.front().effect);
    });
    for (const Modifier& modifier : kModifiers)
        m_link.call(effects(kEffects, "loadEffect", "s", {modifier.effect}), loaded);
    m_nextAttempt = m_queue.asyncAfter(kEffectLoadInterval, [this, attempts] {
        if (m_areLoaded)
            return;
        // An effect that KWin knows but has not loaded is not supported.
        if (!m_areKnown && attempts > 1)
            tryToLoad(attempts - 1);
        else
            m_tried.send(false);
    });
}

void DragModifiers::unload() {
    for (const Modifier& modifier : kModifiers)
        m_link.call(effects(kEffects, "unloadEffect", "s", {modifier.effect}));
}

SubscriptionPtr DragModifiers::onTried(std::function<void(bool areReported)> tried) {
    return m_tried.connect(std::move(tried));
}

SubscriptionPtr DragModifiers::onChange(std::function<void()> changed) {
    return m_changed.connect(std::move(changed));
}

void DragModifiers::follow(const wayland::UserMove& move) {
    using Phase = wayland::UserMove::Phase;
    if (move.phase == Phase::Stepped)
        return;
    m_isMoving = move.phase == Phase::Started && move.isMove && m_areLoaded;
    m_nextRead.reset();
    if (move.phase == Phase::Started)
        m_held = 0;
    if (m_isMoving && !m_isReading)
        read();
}

void DragModifiers::read() {
    m_isReading = true;
    readEffects("activeEffects", [this](const std::vector<std::string>& active) {
        m_isReading = false;
        if (!m_isMoving)
            return;
        m_nextRead = m_queue.asyncAfter(kReadInterval, [this] { read(); });
        apply(active);
    });
}

void DragModifiers::readAtEnd(std::function<void()> done) {
    if (!m_areLoaded)
        return done();
    readEffects("activeEffects", [this, done = std::move(done)](const std::vector<std::string>& active) {
        if (!m_isMoving) // otherwise the next move has begun meanwhile
            apply(active);
        done();
    });
}

void DragModifiers::readEffects(const char* list, EffectsHandler handler) {
    m_link.call(effects("org.freedesktop.DBus.Properties", "Get", "ss", {kEffects, list}),
                [handler = std::move(handler), alive = m_lifetime.watch()](const wayland::BusMessage& reply) {
                    if (!alive.expired())
                        handler(reply.value<std::vector<std::string>>(0));
                });
}

void DragModifiers::apply(const std::vector<std::string>& activeEffects) {
    ModifierFlags held = 0;
    for (const Modifier& modifier : kModifiers) {
        if (contains(activeEffects, modifier.effect))
            held |= modifier.flag;
    }
    if (std::exchange(m_held, held) != held)
        m_changed.send();
}

} // namespace tessarel::plasma
