// SPDX-License-Identifier: LicenseRef-Halyard
// While it lives, the system refuses a block of 2,047 MiB or more.
#pragma once

#include <sys/resource.h>

#include <cstdio>

namespace brt {

#if defined(__SANITIZE_ADDRESS__)
// AddressSanitizer maps more than any limit of the system would allow. SanitizerOptions.cpp gives it this one.
class LimitedMemory {
public:
    LimitedMemory() {}
};
#else
class LimitedMemory {
public:
    LimitedMemory() {
        getrlimit(RLIMIT_AS, &m_before);
        long pages = 0;
        if (std::FILE* const status = std::fopen("/proc/self/statm", "r")) {
            if (std::fscanf(status, "%ld", &pages) != 1) pages = 0;
            std::fclose(status);
        }
        rlimit limited = m_before;
        limited.rlim_cur = static_cast<rlim_t>(pages) * 4096 + (rlim_t{1} << 30);
        setrlimit(RLIMIT_AS, &limited);
    }
    ~LimitedMemory() { setrlimit(RLIMIT_AS, &m_before); }
    LimitedMemory(const LimitedMemory&) = delete;
    LimitedMemory& operator=(const LimitedMemory&) = delete;

private:
    rlimit m_before{};
};
#endif

}  // namespace brt
