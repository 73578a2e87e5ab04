#pragma once

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace quillon {

#if defined(__x86_64__)
[[gnu::target("avx")]] inline void ZeroUpperHalves() {
    _mm256_zeroupper();
}

/// To call after Qt has worked. Its drawing leaves the upper halves of the vector registers in use,
/// and with them many processors run the rest of the program slower, by a tenth where it was
/// measured, until somebody says that they are free.
inline void FreeVectorRegisters() {
    if (__builtin_cpu_supports("avx") != 0) ZeroUpperHalves();
}
#else
/// Only x86 processors have registers whose parts depend on each other in this way.
inline void FreeVectorRegisters() {}
#endif

}  // namespace quillon
