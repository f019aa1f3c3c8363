// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// The least that a list of the machine's processes, exact once a second, costs at rest:
// wake once a second and read every process's name again, since any process may have
// executed another program meanwhile and nothing tells an unprivileged reader so. Kernel
// threads are left out (no memory, no windows: no app's). Names are read through
// descriptors kept open from one second to the next; /proc is read whole again only when
// the kernel has handed out a pid (the last field of /proc/loadavg). No memory, no windows,
// no parents: Stowly's tick does all of this and more, so this program's CPU time is a
// floor for Stowly's at rest.
//
// usage: name_floor          (runs until it is ended)
#define _GNU_SOURCE
#include <dirent.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

enum { kMaxProcesses = 65536 };

static int commFd[kMaxProcesses]; // by slot; -1 when free
static int slotPid[kMaxProcesses];
static int used;

static int known(int pid)
{
    for (int i = 0; i < used; ++i)
        if (commFd[i] >= 0 && slotPid[i] == pid)
            return 1;
    return 0;
}

// PF_KTHREAD in the flags, the ninth field of /proc/PID/stat (counted after the name,
// which may hold spaces and parentheses).
static int isKernelThread(int pid)
{
    char path[64], text[1024];
    snprintf(path, sizeof path, "/proc/%d/stat", pid);
    const int fd = open(path, O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return 0;
    const ssize_t n = read(fd, text, sizeof text - 1);
    close(fd);
    if (n <= 0)
        return 0;
    text[n] = '\0';
    const char* field = strrchr(text, ')');
    for (int i = 2; field != NULL && i < 9; ++i) // ") S ppid pgrp session tty tpgid flags"
        field = strchr(field + 1, ' ');
    return field != NULL && (strtoul(field + 1, NULL, 10) & 0x00200000UL) != 0;
}

static void relist(void)
{
    DIR* dir = opendir("/proc");
    if (dir == NULL)
        return;
    struct dirent* entry;
    while ((entry = readdir(dir)) != NULL) {
        const int pid = atoi(entry->d_name);
        if (pid <= 0 || known(pid) || isKernelThread(pid))
            continue;
        char path[64];
        snprintf(path, sizeof path, "/proc/%d/comm", pid);
        const int fd = open(path, O_RDONLY | O_CLOEXEC);
        if (fd < 0)
            continue;
        int slot = 0;
        while (slot < used && commFd[slot] >= 0)
            ++slot;
        if (slot == kMaxProcesses) {
            close(fd);
            break;
        }
        if (slot == used)
            ++used;
        commFd[slot] = fd;
        slotPid[slot] = pid;
    }
    closedir(dir);
}

int main(void)
{
    const int loadavg = open("/proc/loadavg", O_RDONLY | O_CLOEXEC);
    char last[128] = "", now[128];
    unsigned long names = 0; // read, so that the reads are not dropped as unused
    for (;;) {
        const ssize_t n = loadavg >= 0 ? pread(loadavg, now, sizeof now - 1, 0) : -1;
        now[n > 0 ? n : 0] = '\0';
        const char* lastPid = strrchr(now, ' ');
        if (n <= 0 || lastPid == NULL || strcmp(lastPid, last) != 0) {
            relist();
            if (lastPid != NULL)
                snprintf(last, sizeof last, "%s", lastPid);
        }
        for (int i = 0; i < used; ++i) {
            if (commFd[i] < 0)
                continue;
            char name[64];
            const ssize_t got = pread(commFd[i], name, sizeof name, 0);
            if (got <= 0) { // the process is gone
                close(commFd[i]);
                commFd[i] = -1;
                continue;
            }
            names += (unsigned long)got;
        }
        if (names == 0)
            fprintf(stderr, "name_floor: no process names readable\n");
        sleep(1);
    }
}
