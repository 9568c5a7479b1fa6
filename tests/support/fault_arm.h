// The program's side of the shim that breaks disks: says where the counting of calls begins and ends.
#pragma once

#include <dlfcn.h>

namespace tamlo::test {

/// Without the shim nothing happens.
inline void armFaults(bool on)
{
    if (void* arm = dlsym(RTLD_DEFAULT, "tamloFaultArm")) reinterpret_cast<void (*)(int)>(arm)(on ? 1 : 0);
}

/// Calls counted so far; -1 without the shim.
inline long countedCalls()
{
    void* calls = dlsym(RTLD_DEFAULT, "tamloFaultCalls");
    return calls ? reinterpret_cast<long (*)()>(calls)() : -1;
}

} // namespace tamlo::test
