// SPDX-License-Identifier: MIT

#pragma once

#include "ports/menu.h"

#include <string>
#include <utility>

namespace tessarel {

/// Returns a row of a status menu; it can be chosen unless `command` is `MenuCommand::None`.
inline MenuItem row(std::string title, MenuCommand command = MenuCommand::RunMenuAction, int tag = 0) {
    MenuItem item;
    item.title = std::move(title);
    item.command = command;
    item.tag = tag;
    return item;
}

/// Returns a row with the submenu `rows`.
inline MenuItem submenu(std::string title, Menu rows) {
    MenuItem item = row(std::move(title), MenuCommand::None);
    item.submenu = std::move(rows);
    return item;
}

} // namespace tessarel
