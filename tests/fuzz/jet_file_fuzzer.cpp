// libFuzzer target: any bytes, taken as a database file, must give an error
// or a result, never a crash, a hang or a read outside a buffer.

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "store/jet/error.h"
#include "tests/store/jet/read_everything.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // The engine reads files by path; a memory file spares the disk.
    static const int fd = memfd_create("jet-fuzz", 0);
    if (fd < 0) return 0;
    if (ftruncate(fd, 0) != 0) return 0;
    std::size_t written = 0;
    while (written < size) {
        const ssize_t n = pwrite(fd, data + written, size - written, static_cast<off_t>(written));
        if (n <= 0) return 0;
        written += static_cast<std::size_t>(n);
    }
    try {
        jet::testing::readEverything("/proc/self/fd/" + std::to_string(fd));
    } catch (const jet::Error&) {
    }
    return 0;
}
