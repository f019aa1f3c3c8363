// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>

namespace stowly::linuxdesktop {

// A descriptor bound to one process for as long as it is open: it never refers to another
// process that is later given the same pid, and it polls readable once its process has
// exited (a zombie included). -1 with errno set where the kernel has none (before 5.3).
int openPidfd(std::int32_t pid);

// Whether the pidfd's process has exited (a zombie included): it polls readable then. A
// failed poll counts as exited, so that what was read about the process is read again
// rather than trusted.
bool hasExited(int pidfd);

// Sends a signal through a pidfd; -1 with errno set on failure.
int sendThroughPidfd(int pidfd, int signal);

} // namespace stowly::linuxdesktop
