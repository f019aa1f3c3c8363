// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "Pidfd.h"

#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

namespace stowly::linuxdesktop {

int openPidfd(std::int32_t pid)
{
#ifdef SYS_pidfd_open
    return static_cast<int>(::syscall(SYS_pidfd_open, pid, 0));
#else
    (void)pid;
    errno = ENOSYS;
    return -1;
#endif
}

bool hasExited(int pidfd)
{
    pollfd fd{pidfd, POLLIN, 0};
    int ready;
    do
        ready = ::poll(&fd, 1, 0);
    while (ready < 0 && errno == EINTR);
    return ready != 0;
}

int sendThroughPidfd(int pidfd, int signal)
{
#ifdef SYS_pidfd_send_signal
    return static_cast<int>(::syscall(SYS_pidfd_send_signal, pidfd, signal, nullptr, 0));
#else
    (void)pidfd;
    (void)signal;
    errno = ENOSYS;
    return -1;
#endif
}

} // namespace stowly::linuxdesktop
