// SPDX-License-Identifier: MIT

#include "app/main_menu.h"

#include "model/config.h"

namespace tessarel {

std::vector<MainMenu> mainMenu() {
    static_assert(Config::appName == "Tessarel", "the title below names the program");
    return {
        {Config::appName, {{"Close Window", "performClose:", 'w'}, {"Quit Tessarel", "terminate:", 'q'}}},
        {"Edit",
         {{"Undo", "undo:", 'z'},
          {"Redo", "redo:", 'z', true},
          {},
          {"Cut", "cut:", 'x'},
          {"Copy", "copy:", 'c'},
          {"Paste", "paste:", 'v'},
          {"Select All", "selectAll:", 'a'}}},
    };
}

} // namespace tessarel
