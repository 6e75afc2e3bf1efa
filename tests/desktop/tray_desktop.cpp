// SPDX-License-Identifier: MIT

#include "desktop/tray_desktop.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <span>
#include <stdexcept>

namespace tessarel::x11test {

namespace {

constexpr int kPanelHeight = 30; // as in the configurations below
constexpr int kSmallestIcon = 16;

void writeFile(const std::filesystem::path& file, std::string_view content) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << content;
}

std::string tint2Config(PanelColour colour) {
    const std::string background = colour == PanelColour::Light ? "#f0f0f0 100" : "#181818 100";
    return "rounded = 0\nborder_width = 0\nbackground_color = " + background +
           "\npanel_items = S\npanel_size = 100% 30\npanel_position = bottom center horizontal\n"
           "panel_background_id = 1\nsystray_padding = 4 2 4\nsystray_icon_size = 22\n";
}

constexpr std::string_view kXfce4PanelConfig = R"(<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=8;x=0;y=0"/>
      <property name="length" type="uint" value="100"/>
      <property name="size" type="uint" value="30"/>
      <property name="plugin-ids" type="array"><value type="int" value="1"/></property>
    </property>
  </property>
  <property name="plugins" type="empty"><property name="plugin-1" type="string" value="systray"/></property>
</channel>
)";

std::vector<xcb_window_t> children(XConnection& x, xcb_window_t window) {
    const auto tree = own(xcb_query_tree_reply(x.get(), xcb_query_tree(x.get(), window), nullptr));
    if (!tree)
        return {};
    const xcb_window_t* const first = xcb_query_tree_children(tree.get());
    return {first, first + xcb_query_tree_children_length(tree.get())};
}

/// Returns all descendants of `window`.
std::vector<xcb_window_t> descendants(XConnection& x, xcb_window_t window) {
    std::vector<xcb_window_t> all;
    for (const xcb_window_t child : children(x, window)) {
        all.push_back(child);
        const std::vector<xcb_window_t> below = descendants(x, child);
        all.insert(all.end(), below.begin(), below.end());
    }
    return all;
}

/// Returns the brightness of each pixel of an area of the screen, from 0 to 255.
std::vector<int> brightnesses(XConnection& x, const Frame& area) {
    constexpr std::uint32_t kAllPlanes = ~0U;
    constexpr std::size_t kBytesPerPixel = 4;
    const auto image = own(xcb_get_image_reply(
        x.get(),
        xcb_get_image(x.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, x.root(), static_cast<std::int16_t>(area.x),
                      static_cast<std::int16_t>(area.y), static_cast<std::uint16_t>(area.width),
                      static_cast<std::uint16_t>(area.height), kAllPlanes),
        nullptr));
    if (!image)
        return {};
    const std::span bytes(xcb_get_image_data(image.get()),
                          static_cast<std::size_t>(xcb_get_image_data_length(image.get())));
    std::vector<int> all;
    for (std::size_t first = 0; first + kBytesPerPixel <= bytes.size(); first += kBytesPerPixel)
        all.push_back((bytes[first] + bytes[first + 1] + bytes[first + 2]) / 3);
    return all;
}

struct Appearance {
    bool viewable = false;
    bool overrideRedirect = false;
};

Appearance appearance(XConnection& x, xcb_window_t window) {
    const auto attributes =
        own(xcb_get_window_attributes_reply(x.get(), xcb_get_window_attributes(x.get(), window), nullptr));
    if (!attributes)
        return {};
    return {attributes->map_state == XCB_MAP_STATE_VIEWABLE, attributes->override_redirect != 0};
}

} // namespace

DesktopBus::DesktopBus(const Environment& environment)
    : m_environment(environment), m_address("unix:path=" + environment.at("XDG_RUNTIME_DIR") + "/bus") {
    start();
}

Environment DesktopBus::environmentOn(const XServer& server) const {
    Environment environment = server.environment();
    environment["DBUS_SESSION_BUS_ADDRESS"] = m_address;
    // Qt leaks D-Bus calls whose replies are still pending on exit.
    const std::filesystem::path suppressions = server.configHome() / "leaks";
    std::filesystem::create_directories(suppressions.parent_path());
    std::ofstream(suppressions) << "leak:libQt6DBus\n";
    environment["LSAN_OPTIONS"] = "print_suppressions=0:suppressions=" + suppressions.string();
    return environment;
}

void DesktopBus::start() {
    m_process.emplace(std::vector<std::string>{"dbus-daemon", "--session", "--nofork", "--nopidfile",
                                               "--print-address", "--address=" + m_address},
                      m_environment);
    (void)m_process->readLine(); // printed once the bus is listening
}

std::unique_ptr<ChildProcess> startTint2(const XServer& server, const Environment& environment,
                                         PanelColour colour) {
    const std::filesystem::path config = server.configHome() / "tint2rc";
    writeFile(config, tint2Config(colour));
    return std::make_unique<ChildProcess>(std::vector<std::string>{"tint2", "-c", config}, environment);
}

std::unique_ptr<ChildProcess> startXfce4Panel(const XServer& server, const Environment& environment) {
    writeFile(server.configHome() / "xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml", kXfce4PanelConfig);
    return std::make_unique<ChildProcess>(std::vector<std::string>{"xfce4-panel", "--disable-wm-check"},
                                          environment);
}

bool ShownStatusItem::isOfProgram(xcb_window_t window) {
    return m_observer.text(window, "WM_CLASS").find(m_windowClass) != std::string::npos;
}

std::optional<Frame> ShownStatusItem::icon() {
    XConnection& x = m_observer.x();
    const std::vector<xcb_window_t> clients = m_observer.clients();
    // The window manager has reparented other windows of the program, too.
    const auto isClient = [&](xcb_window_t window) {
        return std::ranges::find(clients, window) != clients.end();
    };
    for (const xcb_window_t topLevel : children(x, m_observer.root()))
        for (const xcb_window_t inner : descendants(x, topLevel))
            if (isOfProgram(inner) && !isClient(inner) && appearance(x, inner).viewable)
                return m_observer.clientFrame(inner);
    return std::nullopt;
}

Frame ShownStatusItem::waitForIcon() {
    // The panel embeds the icon first and positions it afterwards.
    const int panelTop = m_observer.x().screen().height_in_pixels - kPanelHeight;
    std::optional<Frame> found;
    if (!m_observer.waitUntil(
            [&] { return (found = icon()) && found->y >= panelTop && found->width >= kSmallestIcon; }))
        throw std::runtime_error("no icon appears");
    return *found;
}

int ShownStatusItem::brightness(const Frame& area) {
    std::vector<int> seen = brightnesses(m_observer.x(), area);
    if (seen.empty())
        return 0;
    const auto middle = seen.begin() + static_cast<std::ptrdiff_t>(seen.size() / 2);
    std::ranges::nth_element(seen, middle);
    return *middle;
}

int ShownStatusItem::contrast() {
    const std::optional<Frame> place = icon();
    const std::vector<int> seen = place ? brightnesses(m_observer.x(), *place) : std::vector<int>();
    if (seen.empty())
        return 0;
    const auto [darkest, brightest] = std::minmax_element(seen.begin(), seen.end());
    return *brightest - *darkest;
}

std::vector<Frame> ShownStatusItem::menus() {
    std::vector<Frame> found;
    for (const xcb_window_t topLevel : children(m_observer.x(), m_observer.root())) {
        const Appearance seen = appearance(m_observer.x(), topLevel);
        if (!seen.viewable || !seen.overrideRedirect || !isOfProgram(topLevel))
            continue;
        if (const auto frame = m_observer.clientFrame(topLevel))
            found.push_back(*frame);
    }
    return found;
}

Frame ShownStatusItem::row(const Frame& menu, int position, int count) {
    const int height = menu.height / count;
    return {menu.x, menu.y + position * height, menu.width, height};
}

StatusItemProbe::StatusItemProbe(const Environment& environment, Observer& observer)
    : ShownStatusItem(observer, "status_item_probe"), m_process({TESSAREL_STATUS_ITEM_PROBE}, environment) {
    if (heardUpTo("ready").empty())
        throw std::runtime_error("the probe does not start: " + m_process.errors());
}

void StatusItemProbe::tell(std::string_view line) {
    m_process.writeLine(line);
    if (heardUpTo("done").empty())
        throw std::runtime_error("the probe has gone: " + m_process.errors());
}

std::vector<std::string> StatusItemProbe::heardUpTo(std::string_view line) {
    std::vector<std::string> heard;
    while (auto next = m_process.nextLine()) {
        heard.push_back(std::move(*next));
        if (heard.back() == line)
            return heard;
    }
    return {};
}

} // namespace tessarel::x11test
