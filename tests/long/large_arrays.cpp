// Counts at and beyond 2^30 complex elements, where twice the count no
// longer fits in the 32-bit length: complex Add and Sub then run as two
// passes of len real values.  Needs 8 GiB of memory for one array, so it
// is a long check outside the default tests (target long_checks).
#include <sys/mman.h>

#include <cstdio>
#include <cstdint>

#include "orvvm.h"

int main() {
    const int32_t len = (1 << 30) + 3;
    const size_t bytes = size_t(len) * sizeof(Orv32fc);
    void* p = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (p == MAP_FAILED) {
        std::printf("0 passed, 1 failed: cannot map %zu bytes\n", bytes);
        return 1;
    }
    auto* z = static_cast<Orv32fc*>(p);
    for (int32_t i = 0; i < len; ++i) z[i] = {float(i & 1023), -float(i & 511)};
    // In place, z + z: every element doubled exactly, the last ones too.
    int failures = 0;
    if (orvsAdd_32fc_A24(z, z, z, len) != orvStatusOk) ++failures;
    for (int32_t i = 0; i < len; ++i)
        if (z[i].re != 2.0f * float(i & 1023) || z[i].im != -2.0f * float(i & 511)) {
            std::printf("element %d is (%g, %g)\n", i, z[i].re, z[i].im);
            ++failures;
            break;
        }
    if (orvsSub_32fc_A24(z, z, z, len) != orvStatusOk) ++failures;
    for (int32_t i = 0; i < len; i += 4099)
        if (z[i].re != 0.0f || z[i].im != 0.0f) {
            ++failures;
            break;
        }
    munmap(p, bytes);
    std::printf("%d passed, %d failed\n", failures ? 0 : 1, failures ? 1 : 0);
    return failures != 0;
}
