#include "app/welcome.h"

#include "model/config.h"

#include <string>

namespace tessarel {

Alert welcomeAlert(const PlatformWords& words, bool hasStatusItem) {
    const std::string settings =
        hasStatusItem ? "Click the " + words.statusItem + ", then Settings, to"
                      : "Start " + std::string(Config::appName) + " again to open Settings and";
    const std::string ctrlOpt =
        std::string(words.modifierNames.ctrl) + "+" + std::string(words.modifierNames.opt);
    const std::string dragNote = words.welcomeDragNote.empty() ? "" : " " + words.welcomeDragNote;
    return {
        "Welcome to " + std::string(Config::appName),
        words.welcomeFirst + "\n\nTry it: press " + ctrlOpt +
            "+1 to 5 to snap the front window into a zone, or hold Shift while dragging a window to see the "
            "zones." +
            dragNote + " " + settings + " design your own layout.",
        {"Continue", "Open Settings"}};
}

} // namespace tessarel
