// SPDX-License-Identifier: MIT

#include "platform/sim/windows/sim_accessibility.h"

#include "model/call_on_end.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <limits>
#include <locale>
#include <memory>
#include <sstream>
#include <string>
#include <utility>

namespace tessarel::sim {

namespace {

/// Formats a number for the record of requests, independently of the locale.
std::string text(double number) {
    std::ostringstream digits;
    digits.imbue(std::locale::classic());
    digits << std::setprecision(std::numeric_limits<double>::digits10) << number;
    return digits.str();
}

std::string text(const Point& point) {
    return text(point.x) + "," + text(point.y);
}

std::string text(const AttributeValue& value) {
    if (const auto* point = std::get_if<Point>(&value))
        return text(*point);
    if (const auto* size = std::get_if<Size>(&value))
        return text(size->width) + "x" + text(size->height);
    if (const auto* boolean = std::get_if<bool>(&value))
        return *boolean ? "true" : "false";
    return "of another kind";
}

/// Returns the length that a window takes on when `wanted` is requested: whole steps, then within the limits.
double allowed(double wanted, double minimum, double maximum, double step) {
    const double whole = step > 0 ? std::floor(wanted / step) * step : wanted;
    return std::max(std::min(whole, maximum), minimum);
}

/// Returns the override of an attribute, null if it has none. An empty override is a read that fails.
const std::optional<AttributeValue>* overrideOf(const AttributeOverrides& overrides,
                                                std::string_view attribute) {
    const auto found = overrides.find(attribute);
    return found == overrides.end() ? nullptr : &found->second;
}

std::optional<AttributeValue> asValue(const std::optional<std::string>& string) {
    return string ? std::optional<AttributeValue>(*string) : std::nullopt;
}

} // namespace

/// The content of an element's handle: what the element refers to.
struct SimAccessibility::Name {
    enum class Kind { Application, Window, PartOfWindow, Desktop };

    Kind kind = Kind::Application;
    ProcessId pid = 0;
    WindowId window = {};
    /// Belongs to this handle, not to others that refer to the same object. Mutable, because elements share
    /// a const handle with their copies.
    mutable std::optional<SimClock::Duration> timeLimit = {};
};

const SimAccessibility::Name* SimAccessibility::nameOf(const Element& element) {
    return static_cast<const Name*>(element.handle.get());
}

Element SimAccessibility::elementOf(const Name& name) {
    return {std::make_shared<const Name>(name)};
}

std::string SimAccessibility::text(const Name& name) {
    std::string window = "window " + std::to_string(static_cast<std::uint32_t>(name.window));
    switch (name.kind) {
    case Name::Kind::Application:
        return "application " + std::to_string(name.pid);
    case Name::Kind::Window:
        return window;
    case Name::Kind::PartOfWindow:
        return "part of " + window;
    case Name::Kind::Desktop:
        return "desktop";
    }
    return {};
}

Element SimAccessibility::application(ProcessId pid) {
    return elementOf({Name::Kind::Application, pid});
}

Element SimAccessibility::window(WindowId id) {
    const SimWindow* window = m_state.window(id);
    return elementOf({Name::Kind::Window, window ? window->pid : 0, id});
}

Element SimAccessibility::systemWide() {
    return elementOf({Name::Kind::Desktop});
}

void SimAccessibility::setMessagingTimeout(const Element& element, std::chrono::milliseconds limit) {
    const Name* name = nameOf(element);
    if (!name)
        return;
    m_state.requests.push_back("limit " + text(*name) + " " + std::to_string(limit.count()));
    if (name->kind == Name::Kind::Desktop)
        m_timeLimit = limit;
    else
        name->timeLimit = limit;
}

std::optional<Element> SimAccessibility::elementAtPosition(const Element& within, const Point& axPoint) {
    const Name* name = nameOf(within);
    if (!name)
        return {};
    m_state.requests.push_back("find " + tessarel::sim::text(axPoint));
    const SimWindow* window = m_state.windowAt(axPoint);
    const bool isWithin = name->kind == Name::Kind::Desktop || (window && window->pid == name->pid);
    if (!window || !isWithin)
        return {};
    // The application that owns the window replies, within the time limit of `within`.
    const Name found{window->partRole ? Name::Kind::PartOfWindow : Name::Kind::Window, window->pid,
                     window->id};
    return ask(*name, found.pid) ? std::optional(elementOf(found)) : std::nullopt;
}

std::optional<AttributeValue> SimAccessibility::copyAttribute(const Element& element,
                                                              std::string_view attribute) {
    const Name* name = nameOf(element);
    if (!name)
        return {};
    m_state.requests.push_back("read " + text(*name) + " " + std::string(attribute));
    if (!ask(*name, name->pid))
        return {};
    switch (name->kind) {
    case Name::Kind::Application:
        return applicationAttribute(name->pid, attribute);
    case Name::Kind::Window:
        if (isPostponed(name->window, attribute))
            return {};
        return windowAttribute(name->window, attribute);
    case Name::Kind::PartOfWindow:
        return partAttribute(name->window, attribute);
    case Name::Kind::Desktop:
        return {};
    }
    return {};
}

void SimAccessibility::setAttribute(const Element& element, std::string_view attribute,
                                    const AttributeValue& value) {
    const Name* name = nameOf(element);
    if (!name)
        return;
    const std::string line =
        "write " + text(*name) + " " + std::string(attribute) + " " + tessarel::sim::text(value);
    m_state.requests.push_back(line);
    write(*name, attribute, value);
    if (m_afterWrite)
        m_afterWrite(line);
}

void SimAccessibility::write(const Name& name, std::string_view attribute, const AttributeValue& value) {
    SimApplication* application = ask(name, name.pid);
    if (!application)
        return;

    // The only attribute of an application that can be written, provided that it has it.
    if (name.kind == Name::Kind::Application) {
        const auto* on = std::get_if<bool>(&value);
        if (on && attribute == attribute::kEnhancedUserInterface && application->enhancedInterface)
            application->enhancedInterface = *on;
        return;
    }
    SimWindow* window = name.kind == Name::Kind::Window ? m_state.window(name.window) : nullptr;
    if (window && m_several && std::ranges::find(*m_several, window->id) == m_several->end())
        m_several->push_back(window->id);
    if (!window || window->fullScreen || window->isTiled)
        return;
    const auto* point = std::get_if<Point>(&value);
    if (point && attribute == attribute::kPosition && point->isFinite())
        setPosition(*window, *point);
    const auto* size = std::get_if<Size>(&value);
    if (size && attribute == attribute::kSize && size->isFinite())
        setSize(*window, *size);
}

bool SimAccessibility::canExpress(const Rect& axFrame) {
    return axFrame.isFinite();
}

std::uintptr_t SimAccessibility::key(const Element& element) {
    // Bits above any window id keep the keys of different kinds of elements apart.
    constexpr std::uintptr_t kPart = std::uintptr_t{1} << 30U;
    constexpr std::uintptr_t kApplication = std::uintptr_t{1} << 31U;
    const Name* name = nameOf(element);
    if (!name)
        return 0;
    switch (name->kind) {
    case Name::Kind::Application:
        return static_cast<std::uintptr_t>(name->pid) | kApplication;
    case Name::Kind::Window:
        return m_state.windowKey(name->window);
    case Name::Kind::PartOfWindow:
        return static_cast<std::uintptr_t>(name->window) | kPart;
    case Name::Kind::Desktop:
        return kApplication;
    }
    return 0;
}

std::optional<ProcessId> SimAccessibility::pid(const Element& element) {
    const Name* name = nameOf(element);
    if (!name)
        return {};
    // A local look-up, without a request to the application.
    const bool exists = name->kind == Name::Kind::Application ? m_state.application(name->pid) != nullptr
                                                              : m_state.window(name->window) != nullptr;
    return exists ? std::optional(name->pid) : std::nullopt;
}

bool SimAccessibility::hasRefused(const Element& window) {
    const Name* name = nameOf(window);
    const SimWindow* found = name ? m_state.window(name->window) : nullptr;
    return found && found->isTiled;
}

SubscriptionPtr SimAccessibility::writeSeveral() {
    if (!m_postponesReads)
        return nullptr;
    m_several.emplace();
    return callOnEnd([this] { endSeveral(); });
}

void SimAccessibility::endSeveral() {
    const auto written = std::exchange(m_several, std::nullopt).value_or(std::vector<WindowId>());
    for (const WindowId id : written) {
        if (const SimWindow* const found = m_state.window(id))
            m_corrections.send(window(id), found->axFrame);
    }
}

bool SimAccessibility::isPostponed(WindowId id, std::string_view attribute) const {
    return m_several && (attribute == attribute::kPosition || attribute == attribute::kSize) &&
           std::ranges::find(*m_several, id) != m_several->end();
}

SubscriptionPtr
SimAccessibility::onCorrected(std::function<void(const Element& window, const Rect& axFrame)> corrected) {
    return m_corrections.connect(std::move(corrected));
}

void SimAccessibility::correct(WindowId id, const Rect& axFrame) {
    if (SimWindow* const corrected = m_state.window(id)) {
        show(*corrected, axFrame);
        m_corrections.send(window(id), axFrame);
    }
}

std::optional<RunningApplication> SimAccessibility::owner(const Element& window) {
    const Name* name = nameOf(window);
    return name && name->kind != Name::Kind::Application ? m_state.owner(name->window) : std::nullopt;
}

SubscriptionPtr SimAccessibility::onWindowCreated(const Element& application,
                                                  std::function<void(const Element& window)> created) {
    const Name* name = nameOf(application);
    if (!name || name->kind != Name::Kind::Application || name->pid == SimState::kOwnPid)
        return nullptr;
    m_state.requests.push_back("observe " + text(*name));
    const SimApplication* observed = ask(*name, name->pid);
    if (!observed || observed->refusesObservers)
        return nullptr;
    return m_state.windowObservers.add(name->pid, std::move(created));
}

SubscriptionPtr SimAccessibility::onWindowClosed(const Element& window, std::function<void()> closed) {
    const Name* name = nameOf(window);
    if (!name || name->kind != Name::Kind::Window || name->pid == SimState::kOwnPid)
        return nullptr;
    // Needs no request: the system reports a closed window even if its application does not reply.
    return m_state.closeObservers.add(name->window,
                                      [closed = std::move(closed)](const WindowId& /*id*/) { closed(); });
}

void SimAccessibility::reportCreated(WindowId id) {
    if (const SimWindow* opened = m_state.window(id))
        m_state.windowObservers.call(opened->pid, window(id));
}

/// Sends a request to the application of process `pid`. Returns null if it does not exist, ends with this
/// request or does not answer within the time limit. The clock advances by the time that the caller waits.
SimApplication* SimAccessibility::ask(const Name& asked, ProcessId pid) {
    SimApplication* application = m_state.application(pid);
    if (!application)
        return nullptr;
    if (application->requestsUntilDeath && (*application->requestsUntilDeath)-- <= 0) {
        m_state.endApplication(pid);
        return nullptr;
    }
    const auto limit = asked.timeLimit.value_or(m_timeLimit);
    m_state.clock.block(std::min(application->answerTime, limit));
    return application->answerTime < limit ? application : nullptr;
}

std::optional<AttributeValue> SimAccessibility::applicationAttribute(ProcessId pid,
                                                                     std::string_view attribute) {
    const SimApplication& application = *m_state.application(pid);
    if (const auto* said = overrideOf(application.overrides, attribute))
        return *said;
    if (attribute == attribute::kFocusedWindow && application.focusedWindow)
        return elementOf({Name::Kind::Window, pid, *application.focusedWindow});
    if (attribute == attribute::kEnhancedUserInterface && application.enhancedInterface)
        return *application.enhancedInterface;
    if (attribute == attribute::kRole)
        return "AXApplication";
    if (attribute != attribute::kWindows)
        return {};
    std::vector<Element> windows;
    for (const SimWindow& window : m_state.windows) {
        if (window.pid == pid)
            windows.push_back(elementOf({Name::Kind::Window, pid, window.id}));
    }
    return windows;
}

std::optional<AttributeValue> SimAccessibility::windowAttribute(WindowId id, std::string_view attribute) {
    const SimWindow* window = m_state.window(id);
    if (!window)
        return {};
    if (const auto* said = overrideOf(window->overrides, attribute))
        return *said;
    const Rect& axFrame = window->shownAxFrame(m_state.clock.now());
    if (attribute == attribute::kPosition)
        return axFrame.origin();
    if (attribute == attribute::kSize)
        return axFrame.size();
    if (attribute == attribute::kRole)
        return asValue(window->role);
    if (attribute == attribute::kSubrole)
        return asValue(window->subrole);
    if (attribute == attribute::kMinimized)
        return window->minimized;
    if (attribute == attribute::kFullScreen)
        return window->fullScreen;
    return {};
}

/// Parts of windows have only two attributes: their role and the window that they belong to.
std::optional<AttributeValue> SimAccessibility::partAttribute(WindowId id, std::string_view attribute) {
    const SimWindow* window = m_state.window(id);
    if (!window)
        return {};
    if (attribute == attribute::kRole)
        return asValue(window->partRole);
    if (attribute != attribute::kWindow)
        return {};
    const auto* said = overrideOf(window->overrides, attribute);
    return said ? *said : elementOf({Name::Kind::Window, window->pid, id});
}

void SimAccessibility::setPosition(SimWindow& window, const Point& position) {
    if (m_state.application(window.pid)->refusesPosition)
        return;
    show(window, {position.x, position.y, window.axFrame.width, window.axFrame.height});
}

void SimAccessibility::setSize(SimWindow& window, const Size& size) {
    if (m_state.application(window.pid)->refusesSize)
        return;
    Size wanted = size;
    if (window.cutAtDisplayEdge)
        wanted = cut(wanted, window.axFrame.origin());
    show(window, {window.axFrame.x, window.axFrame.y,
                  allowed(wanted.width, window.minimum.width, window.maximum.width, window.step.width),
                  allowed(wanted.height, window.minimum.height, window.maximum.height, window.step.height)});
}

/// Cuts `size` at the right and bottom edges of the display that contains the top-left corner of the window.
Size SimAccessibility::cut(const Size& size, const Point& axOrigin) const {
    const Screen* screen = m_state.screenAt(axOrigin);
    if (!screen)
        return size;
    const Rect axFrame = m_state.axFrame(*screen);
    return {std::min(size.width, axFrame.maxX() - axOrigin.x),
            std::min(size.height, axFrame.maxY() - axOrigin.y)};
}

void SimAccessibility::show(SimWindow& window, const Rect& axFrame) {
    const auto now = m_state.clock.now();
    // Until it has settled, the window is still seen where it is now.
    const bool animated = m_state.application(window.pid)->enhancedInterface.value_or(false);
    window.axFrameBefore = window.shownAxFrame(now);
    window.settledAt =
        now + std::max(window.settlingTime, animated ? SimApplication::kAnimation : SimClock::Duration{});
    window.axFrame = axFrame;
}

} // namespace tessarel::sim
