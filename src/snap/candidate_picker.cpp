// SPDX-License-Identifier: MIT

#include "snap/candidate_picker.h"

#include <chrono>
#include <utility>

namespace tessarel {

namespace {

/// Limits how long a program that hangs can delay the handling of mouse events.
constexpr std::chrono::milliseconds kMessagingTimeout(250);
/// Maximum distance, in points, between the pointer and the top edge of a grabbed window. Stands for the
/// height of the title bar, which is not known.
constexpr double kGrabHeight = 60;

} // namespace

CandidatePicker::CandidatePicker(const AX& ax, const WindowEngine& engine) : m_ax(ax), m_engine(engine) {}

std::optional<Candidate> CandidatePicker::pick(const Point& axPoint) {
    auto window = m_ax.windowAt(axPoint, kMessagingTimeout);
    if (!window)
        return {};
    const auto pid = m_ax.pid(*window);
    if (!pid || m_engine.isIgnored(m_ax.owner(*window, *pid)) || !m_ax.isUsable(*window))
        return {};
    const auto axFrame = m_ax.frame(*window);
    if (!axFrame || !axFrame->contains(axPoint) || axPoint.y - axFrame->minY() > kGrabHeight)
        return {};
    return Candidate{std::move(*window), *pid, *axFrame};
}

} // namespace tessarel
