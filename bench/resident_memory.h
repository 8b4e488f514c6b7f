#pragma once

#include <unistd.h>

#include <cstdio>

namespace bench {

// Resident memory of this process in bytes, from /proc/self/statm; 0 where
// it cannot be read.
inline double residentBytes() {
    std::FILE* statm = std::fopen("/proc/self/statm", "r");
    if (statm == nullptr)
        return 0;
    long pages = 0;
    long resident = 0;
    const int read = std::fscanf(statm, "%ld %ld", &pages, &resident);
    std::fclose(statm);
    return read == 2 ? static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE))
                     : 0;
}

}  // namespace bench
