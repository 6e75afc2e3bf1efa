#pragma once

#include "model/subscription.h"

#include <functional>
#include <utility>

namespace tessarel::sim {

/// A subscription that calls a function on destruction.
class CallOnEnd : public Subscription {
public:
    explicit CallOnEnd(std::function<void()> end) : m_end(std::move(end)) {}
    ~CallOnEnd() override { m_end(); }

private:
    std::function<void()> m_end;
};

} // namespace tessarel::sim
