// SPDX-License-Identifier: MIT

#pragma once

#include "support/x11/child_process.h"
#include "support/x11/x_connection.h"

namespace tessarel::bench {

using x11test::ChildProcess;

/// A connection to the X server. Each part of a benchmark that sends or watches has its own, so that none
/// queues behind another.
using Connection = x11test::XConnection;

/// An owned reply or event of the X server.
template <typename T>
using Received = x11test::Owned<T>;

} // namespace tessarel::bench
