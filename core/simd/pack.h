#ifndef CORVANE_CORE_SIMD_PACK_H
#define CORVANE_CORE_SIMD_PACK_H

#include <stdint.h>
#include <string.h>

// Numbers side by side, one per ray or pixel, as the compilers' vector types: + - * < & | ?: are the language's own,
// per lane. KERNEL_ISA and KERNEL_LANES come from the build, once per instruction set; everything that is compiled more
// than once lives in the namespace KERNEL_ISA.
namespace corvane::KERNEL_ISA
{
constexpr int kLanes = KERNEL_LANES; // the register's width; a wider pack is slower, not faster
typedef float FloatPack __attribute__((vector_size(4 * KERNEL_LANES)));
typedef int32_t IntPack __attribute__((vector_size(4 * KERNEL_LANES))); // a comparison gives -1 or 0 per lane
typedef int16_t ShortPack __attribute__((vector_size(2 * KERNEL_LANES)));

struct VectorPack
{
    FloatPack x, y, z;
};

inline IntPack ToInt(FloatPack a) { return __builtin_convertvector(a, IntPack); } // truncates
inline FloatPack ToFloat(IntPack a) { return __builtin_convertvector(a, FloatPack); }
inline ShortPack ToShort(IntPack a) { return __builtin_convertvector(a, ShortPack); }
inline FloatPack Lerp(FloatPack a, FloatPack b, FloatPack t) { return a + t * (b - a); }

inline FloatPack Abs(FloatPack a) { return a < 0.0f ? -a : a; }

inline FloatPack Sqrt(FloatPack a)
{
    for (int lane = 0; lane < kLanes; ++lane)
        a[lane] = __builtin_sqrtf(a[lane]);
    return a;
}

// Whether any lane of a mask is set.
inline bool Any(IntPack mask)
{
#if defined(__AVX__) && KERNEL_LANES == 8
    return __builtin_ia32_movmskps256(FloatPack(mask)) != 0;
#elif defined(__SSE2__) && KERNEL_LANES == 4
    return __builtin_ia32_movmskps(FloatPack(mask)) != 0;
#else
    int32_t any = 0;
    for (int lane = 0; lane < kLanes; ++lane)
        any |= mask[lane];
    return any != 0;
#endif
}

inline FloatPack LoadFloats(const float* from)
{
    FloatPack pack;
    memcpy(&pack, from, sizeof pack);
    return pack;
}

inline void StoreShorts(ShortPack pack, int16_t* to) { memcpy(to, &pack, sizeof pack); }
} // namespace corvane::KERNEL_ISA

#endif
