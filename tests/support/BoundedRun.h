#pragma once

#include <QtGlobal>

#include <functional>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

// Runs work in a forked child under an address-space and a CPU-time limit,
// so that a step that would allocate without bound or never end shows as a
// failed check, never as a test run killed or hung. True when the child's
// work returned true within the limits. The child touches no window or
// thread of the parent: give it plain computations.
inline bool runBounded(const std::function<bool()> &work, rlim_t addressSpace = rlim_t(1) << 30,
                       unsigned cpuSeconds = 5)
{
    std::fflush(nullptr);
    const pid_t pid = fork();
    if (pid < 0)
        return false;
    if (pid == 0) {
        const rlimit memory{addressSpace, addressSpace};
        const rlimit cpu{cpuSeconds, cpuSeconds};
#if !defined(__SANITIZE_ADDRESS__)
        // AddressSanitizer reserves terabytes of address space for its shadow
        // memory; under it only the CPU time is bounded.
        setrlimit(RLIMIT_AS, &memory);
#else
        (void)memory;
#endif
        setrlimit(RLIMIT_CPU, &cpu);
        alarm(cpuSeconds * 3);
        bool ok = false;
        try {
            ok = work();
        } catch (...) {
        }
        _exit(ok ? 0 : 1);
    }
    int status = 0;
    while (waitpid(pid, &status, 0) < 0) {
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}
