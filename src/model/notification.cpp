#include "model/notification.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace tessarel {

struct Notification::Observers {
    struct Entry {
        std::size_t id = 0;
        // Shared, because an observer may remove itself while it runs.
        std::shared_ptr<std::function<void()>> observer;
    };

    std::vector<Entry> entries;
    std::size_t nextId = 0;

    [[nodiscard]] bool has(std::size_t id) const {
        return std::any_of(entries.begin(), entries.end(),
                           [&](const Entry& entry) { return entry.id == id; });
    }
};

Notification::Notification() : m_observers(std::make_shared<Observers>()) {}

Notification::~Notification() = default;

SubscriptionPtr Notification::addObserver(std::function<void()> observer) {
    class Observation : public Subscription {
    public:
        Observation(std::weak_ptr<Observers> observers, std::size_t id)
            : m_observers(std::move(observers)), m_id(id) {}
        ~Observation() override {
            if (const auto observers = m_observers.lock())
                std::erase_if(observers->entries, [this](const auto& entry) { return entry.id == m_id; });
        }

    private:
        std::weak_ptr<Observers> m_observers;
        std::size_t m_id;
    };

    const std::size_t id = m_observers->nextId++;
    m_observers->entries.push_back({id, std::make_shared<std::function<void()>>(std::move(observer))});
    return std::make_unique<Observation>(m_observers, id);
}

void Notification::post() {
    // An observer may destroy this notification.
    const auto observers = m_observers;
    // A copy, because observers may add and remove entries.
    const auto present = observers->entries;
    for (const auto& [id, observer] : present) {
        if (observers->has(id))
            (*observer)();
    }
}

} // namespace tessarel
