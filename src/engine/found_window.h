// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/accessibility_port.h"
#include "ports/desktop/process_id.h"

namespace tessarel {

/// A window of another program and the process that owns it.
struct FoundWindow {
    Element element;
    ProcessId pid = 0;
};

} // namespace tessarel
