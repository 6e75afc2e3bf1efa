// SPDX-License-Identifier: MIT

#pragma once

#include <CoreFoundation/CoreFoundation.h>

enum { PROC_PIDTBSDINFO = 3 };
struct proc_bsdinfo {
    uint64_t pbi_start_tvsec;
    uint64_t pbi_start_tvusec;
};

SDK_EXTERN int proc_pidinfo(int pid, int flavor, uint64_t argument, void* _Nonnull buffer, int size)
    SDK_SINCE(10.5);
