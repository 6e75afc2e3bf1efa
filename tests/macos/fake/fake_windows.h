#pragma once

namespace tessarel::fakemac {

struct WindowSight {
    long level = 0;
    unsigned long collectionBehavior = 0;
    bool ignoresMouseEvents = false;
    bool hasShadow = true;
    bool operator==(const WindowSight&) const = default;
};

/// A view as a toolkit makes it, in a window of its own or in none yet.
class View {
public:
    explicit View(bool isInWindow = true);
    View(const View&) = delete;
    View& operator=(const View&) = delete;
    ~View();

    [[nodiscard]] void* native() const { return m_view; }
    [[nodiscard]] WindowSight window() const;

private:
    void* m_view;
};

} // namespace tessarel::fakemac
