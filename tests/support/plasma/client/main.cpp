// SPDX-License-Identifier: MIT

// Plays another program on a Wayland desktop: its windows take every size that their limits allow. Reads
// commands, one per line:
//   open NUMBER DECORATED WIDTH HEIGHT MINIMUM-WIDTH MINIMUM-HEIGHT MAXIMUM-WIDTH MAXIMUM-HEIGHT
//       ANNOUNCES-LIMITS PARENT [APPLICATION-ID]
//   close NUMBER
//   panel HEIGHT
//   reserve HEIGHT
//   stall
//   resume
// The title of a window is "window NUMBER". DECORATED is 1 if it has a title bar, which the compositor draws,
// otherwise 0. A limit of 0 is none. ANNOUNCES-LIMITS is 1 if the compositor gets the limits. PARENT is the
// number of the window that this one is a dialog of, or 0. A window whose
// size stays the same shows no new image, and one that leaves the maximised state first takes the size again
// with which it has opened, as those of some toolkits do. A panel is along the top edge of the first display
// and reserves its height, until "reserve" changes what it reserves. After "stall" the program reads nothing
// that the compositor sends, until "resume".

#include "layer-shell-client.h"
#include "xdg-decoration-unstable-v1-client.h"
#include "xdg-shell-client.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <map>
#include <memory>
#include <poll.h>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <type_traits>
#include <unistd.h>
#include <utility>
#include <wayland-client.h>

namespace {

struct Size {
    int width = 0;
    int height = 0;

    bool operator==(const Size&) const = default;
};

/// What the compositor announces.
struct Globals {
    wl_compositor* compositor = nullptr;
    wl_shm* memory = nullptr;
    xdg_wm_base* windows = nullptr;
    zxdg_decoration_manager_v1* decorations = nullptr;
    zwlr_layer_shell_v1* layers = nullptr;
    wl_output* display = nullptr; ///< the first one
};

Globals globals;

constexpr xdg_wm_base_listener kPings{
    [](void*, xdg_wm_base* windows, std::uint32_t serial) { xdg_wm_base_pong(windows, serial); }};

constexpr wl_registry_listener kAnnouncements{
    [](void*, wl_registry* registry, std::uint32_t name, const char* interface, std::uint32_t) {
        const auto bind = [&](const wl_interface& wanted, auto*& bound) {
            if (bound == nullptr && interface == std::string_view(wanted.name))
                bound = static_cast<std::remove_reference_t<decltype(bound)>>(
                    wl_registry_bind(registry, name, &wanted, 1));
        };
        bind(wl_compositor_interface, globals.compositor);
        bind(wl_shm_interface, globals.memory);
        bind(xdg_wm_base_interface, globals.windows);
        bind(zxdg_decoration_manager_v1_interface, globals.decorations);
        bind(zwlr_layer_shell_v1_interface, globals.layers);
        bind(wl_output_interface, globals.display);
    },
    [](void*, wl_registry*, std::uint32_t) {}};

/// Shows a black image of this size on the surface.
void fill(wl_surface* surface, Size size) {
    const int bytes = size.width * size.height * 4;
    const int file = ::memfd_create("window", MFD_CLOEXEC);
    if (file < 0 || ::ftruncate(file, bytes) != 0)
        std::abort();
    wl_shm_pool* const pool = wl_shm_create_pool(globals.memory, file, bytes);
    wl_buffer* const buffer =
        wl_shm_pool_create_buffer(pool, 0, size.width, size.height, size.width * 4, WL_SHM_FORMAT_XRGB8888);
    static constexpr wl_buffer_listener kRelease{[](void*, wl_buffer* old) { wl_buffer_destroy(old); }};
    wl_buffer_add_listener(buffer, &kRelease, nullptr);
    wl_shm_pool_destroy(pool);
    ::close(file);
    wl_surface_attach(surface, buffer, 0, 0);
    wl_surface_damage(surface, 0, 0, size.width, size.height);
    wl_surface_commit(surface);
}

struct WindowOptions {
    std::string title;
    std::string applicationId;
    bool isDecorated = false;
    Size size;
    Size minimum;
    Size maximum;
    bool announcesLimits = true;
    xdg_toplevel* parent = nullptr;
};

class Window {
public:
    explicit Window(const WindowOptions& options)
        : m_ownSize(options.size), m_size(options.size), m_minimum(options.minimum),
          m_maximum(options.maximum), m_surface(wl_compositor_create_surface(globals.compositor)),
          m_shell(xdg_wm_base_get_xdg_surface(globals.windows, m_surface)),
          m_window(xdg_surface_get_toplevel(m_shell)) {
        static constexpr auto kSizes = [] {
            xdg_toplevel_listener listener{}; // later versions of the protocol have more events
            listener.configure = [](void* data, xdg_toplevel*, std::int32_t width, std::int32_t height,
                                    wl_array* states) {
                static_cast<Window*>(data)->configure({width, height}, isMaximised(*states));
            };
            listener.close = [](void*, xdg_toplevel*) { std::exit(EXIT_SUCCESS); };
            return listener;
        }();
        static constexpr xdg_surface_listener kConfigured{
            [](void* data, xdg_surface* shell, std::uint32_t serial) {
                xdg_surface_ack_configure(shell, serial);
                static_cast<Window*>(data)->show();
            }};
        xdg_surface_add_listener(m_shell, &kConfigured, this);
        xdg_toplevel_add_listener(m_window, &kSizes, this);
        xdg_toplevel_set_title(m_window, options.title.c_str());
        if (!options.applicationId.empty())
            xdg_toplevel_set_app_id(m_window, options.applicationId.c_str());
        if (options.announcesLimits) {
            xdg_toplevel_set_min_size(m_window, options.minimum.width, options.minimum.height);
            xdg_toplevel_set_max_size(m_window, options.maximum.width, options.maximum.height);
        }
        if (options.isDecorated) {
            m_decoration = zxdg_decoration_manager_v1_get_toplevel_decoration(globals.decorations, m_window);
            zxdg_toplevel_decoration_v1_set_mode(m_decoration, ZXDG_TOPLEVEL_DECORATION_V1_MODE_SERVER_SIDE);
        }
        xdg_toplevel_set_parent(m_window, options.parent);
        wl_surface_commit(m_surface);
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    ~Window() {
        if (m_decoration != nullptr)
            zxdg_toplevel_decoration_v1_destroy(m_decoration);
        xdg_toplevel_destroy(m_window);
        xdg_surface_destroy(m_shell);
        wl_surface_destroy(m_surface);
    }

    [[nodiscard]] xdg_toplevel* window() const { return m_window; }

private:
    static bool isMaximised(const wl_array& states) {
        const std::span all(static_cast<const std::uint32_t*>(states.data),
                            states.size / sizeof(std::uint32_t));
        return std::ranges::find(all, XDG_TOPLEVEL_STATE_MAXIMIZED) != all.end();
    }

    void configure(Size wanted, bool isMaximised) {
        const bool isLeaving = std::exchange(m_isMaximised, isMaximised) && !isMaximised;
        if (isLeaving)
            m_size = m_ownSize;
        else if (wanted.width > 0 && wanted.height > 0)
            take(wanted);
    }

    void show() {
        if (m_size == m_shown)
            return;
        fill(m_surface, m_size);
        m_shown = m_size;
    }

    /// Takes the size within the limits, which the compositor leaves to the program.
    void take(Size wanted) {
        const auto within = [](int value, int minimum, int maximum) {
            return std::max(maximum > 0 ? std::min(value, maximum) : value, minimum);
        };
        m_size = {within(wanted.width, m_minimum.width, m_maximum.width),
                  within(wanted.height, m_minimum.height, m_maximum.height)};
    }

    Size m_ownSize; ///< with which the window has opened
    Size m_size;
    Size m_shown;
    bool m_isMaximised = false;
    Size m_minimum;
    Size m_maximum;
    wl_surface* m_surface;
    xdg_surface* m_shell;
    xdg_toplevel* m_window;
    zxdg_toplevel_decoration_v1* m_decoration = nullptr;
};

struct Panel {
    wl_surface* surface = nullptr;
    zwlr_layer_surface_v1* layer = nullptr;

    void reserve(int height) const {
        zwlr_layer_surface_v1_set_exclusive_zone(layer, height);
        wl_surface_commit(surface);
    }
};

Panel openPanel(int height) {
    constexpr std::uint32_t kTopEdge = ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT |
                                       ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT;
    wl_surface* const surface = wl_compositor_create_surface(globals.compositor);
    zwlr_layer_surface_v1* const panel = zwlr_layer_shell_v1_get_layer_surface(
        globals.layers, surface, globals.display, ZWLR_LAYER_SHELL_V1_LAYER_TOP, "panel");
    static constexpr zwlr_layer_surface_v1_listener kConfigured{
        [](void* data, zwlr_layer_surface_v1* configured, std::uint32_t serial, std::uint32_t width,
           std::uint32_t tall) {
            zwlr_layer_surface_v1_ack_configure(configured, serial);
            fill(static_cast<wl_surface*>(data), {static_cast<int>(width), static_cast<int>(tall)});
        },
        [](void*, zwlr_layer_surface_v1*) {}};
    zwlr_layer_surface_v1_add_listener(panel, &kConfigured, surface);
    zwlr_layer_surface_v1_set_size(panel, 0, static_cast<std::uint32_t>(height));
    zwlr_layer_surface_v1_set_anchor(panel, kTopEdge);
    const Panel opened{surface, panel};
    opened.reserve(height);
    return opened;
}

/// Carries out the commands of the test.
class Commands {
public:
    [[nodiscard]] bool isStalled() const { return m_isStalled; }

    void carryOut(const std::string& line) {
        std::istringstream words(line);
        std::string verb;
        int number = 0;
        words >> verb >> number;
        if (verb == "open")
            m_windows[number] = std::make_unique<Window>(optionsFrom(words, number));
        else if (verb == "close")
            m_windows.erase(number);
        else if (verb == "panel")
            m_panel = openPanel(number);
        else if (verb == "reserve")
            m_panel.reserve(number);
        else if (verb == "stall" || verb == "resume")
            m_isStalled = verb == "stall";
    }

private:
    WindowOptions optionsFrom(std::istringstream& words, int number) {
        WindowOptions options;
        options.title = "window " + std::to_string(number);
        words >> options.isDecorated;
        for (Size* const size : {&options.size, &options.minimum, &options.maximum})
            words >> size->width >> size->height;
        int parent = 0;
        words >> options.announcesLimits >> parent >> options.applicationId;
        if (parent != 0)
            options.parent = m_windows.at(parent)->window();
        return options;
    }

    bool m_isStalled = false;
    Panel m_panel;
    std::map<int, std::unique_ptr<Window>> m_windows;
};

} // namespace

int main() {
    wl_display* const display = wl_display_connect(nullptr);
    if (display == nullptr)
        return EXIT_FAILURE;
    wl_registry_add_listener(wl_display_get_registry(display), &kAnnouncements, nullptr);
    wl_display_roundtrip(display);
    xdg_wm_base_add_listener(globals.windows, &kPings, nullptr);

    Commands commands;
    std::string unread;
    for (;;) {
        wl_display_dispatch_pending(display);
        wl_display_flush(display);
        std::array<pollfd, 2> inputs{
            pollfd{STDIN_FILENO, POLLIN, 0},
            pollfd{commands.isStalled() ? -1 : wl_display_get_fd(display), POLLIN, 0}};
        ::poll(inputs.data(), inputs.size(), -1);
        if (inputs[1].revents != 0 && wl_display_dispatch(display) < 0)
            return EXIT_FAILURE;
        if (inputs[0].revents == 0)
            continue;
        std::array<char, 4096> bytes{};
        const auto count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
        if (count <= 0)
            return EXIT_SUCCESS;
        unread.append(bytes.data(), static_cast<std::size_t>(count));
        for (auto end = unread.find('\n'); end != std::string::npos; end = unread.find('\n')) {
            commands.carryOut(unread.substr(0, end));
            unread.erase(0, end + 1);
        }
    }
}
