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
typedef int32_t IntPack __attribute__((vector_size(4 * KERNEL_LANES)));  // a comparison gives -1 or 0 per lane
typedef int64_t LongPack __attribute__((vector_size(4 * KERNEL_LANES))); // half as many numbers
typedef int16_t ShortPack __attribute__((vector_size(2 * KERNEL_LANES)));

typedef float Quad __attribute__((vector_size(16))); // four numbers of one ray

struct VectorPack
{
    FloatPack x, y, z;
};

struct QuadPack
{
    FloatPack x, y, z, w;
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

// The lanes of a mask as bits, the first lane lowest.
inline uint32_t BitsOf(IntPack mask)
{
#if defined(__AVX__) && KERNEL_LANES == 8
    return uint32_t(__builtin_ia32_movmskps256(FloatPack(mask)));
#elif defined(__SSE2__) && KERNEL_LANES == 4
    return uint32_t(__builtin_ia32_movmskps(FloatPack(mask)));
#else
    uint32_t bits = 0;
    for (int lane = 0; lane < kLanes; ++lane)
        bits |= uint32_t(mask[lane] & 1) << lane;
    return bits;
#endif
}

// Whether any lane of a mask is set.
inline bool Any(IntPack mask) { return BitsOf(mask) != 0; }

// Takes the lowest set bit out of a number that has one.
inline int NextBit(uint32_t& bits)
{
    const int bit = __builtin_ctz(bits);
    bits &= bits - 1;
    return bit;
}

inline FloatPack LoadFloats(const float* from)
{
    FloatPack pack;
    memcpy(&pack, from, sizeof pack);
    return pack;
}

inline void StoreFloats(FloatPack pack, float* to) { memcpy(to, &pack, sizeof pack); }
inline void StoreInts(IntPack pack, int32_t* to) { memcpy(to, &pack, sizeof pack); }

// Entries of a table, one lane at a time: hardware gathers measured slower.
inline IntPack Gather(const int32_t* table, IntPack index)
{
    IntPack gathered;
    for (int lane = 0; lane < kLanes; ++lane)
        gathered[lane] = table[index[lane]];
    return gathered;
}

inline FloatPack Gather(const float* table, IntPack index)
{
    FloatPack gathered;
    for (int lane = 0; lane < kLanes; ++lane)
        gathered[lane] = table[index[lane]];
    return gathered;
}

// Numbers 0 and 1, or 2 and 3, of each four of one pack next to those of another.
#if KERNEL_LANES == 8
inline FloatPack InterleaveLow(FloatPack a, FloatPack b)
{
    return __builtin_shufflevector(a, b, 0, 8, 1, 9, 4, 12, 5, 13);
}
inline FloatPack InterleaveHigh(FloatPack a, FloatPack b)
{
    return __builtin_shufflevector(a, b, 2, 10, 3, 11, 6, 14, 7, 15);
}
inline FloatPack JoinLow(FloatPack a, FloatPack b) { return __builtin_shufflevector(a, b, 0, 1, 8, 9, 4, 5, 12, 13); }
inline FloatPack JoinHigh(FloatPack a, FloatPack b)
{
    return __builtin_shufflevector(a, b, 2, 3, 10, 11, 6, 7, 14, 15);
}
inline FloatPack RowOf(const Quad* quads)
{
    return __builtin_shufflevector(quads[0], quads[4], 0, 1, 2, 3, 4, 5, 6, 7);
}
inline void StoreRow(FloatPack row, Quad* quads)
{
    quads[0] = __builtin_shufflevector(row, row, 0, 1, 2, 3);
    quads[4] = __builtin_shufflevector(row, row, 4, 5, 6, 7);
}
#else
inline FloatPack InterleaveLow(FloatPack a, FloatPack b) { return __builtin_shufflevector(a, b, 0, 4, 1, 5); }
inline FloatPack InterleaveHigh(FloatPack a, FloatPack b) { return __builtin_shufflevector(a, b, 2, 6, 3, 7); }
inline FloatPack JoinLow(FloatPack a, FloatPack b) { return __builtin_shufflevector(a, b, 0, 1, 4, 5); }
inline FloatPack JoinHigh(FloatPack a, FloatPack b) { return __builtin_shufflevector(a, b, 2, 3, 6, 7); }
inline FloatPack RowOf(const Quad* quads) { return quads[0]; }
inline void StoreRow(FloatPack row, Quad* quads) { quads[0] = row; }
#endif

// Quads side by side, one lane each, and back.
inline QuadPack LoadQuads(const Quad* quads)
{
    const FloatPack a = RowOf(quads), b = RowOf(quads + 1), c = RowOf(quads + 2), d = RowOf(quads + 3);
    const FloatPack lowAB = InterleaveLow(a, b), highAB = InterleaveHigh(a, b);
    const FloatPack lowCD = InterleaveLow(c, d), highCD = InterleaveHigh(c, d);
    return {JoinLow(lowAB, lowCD), JoinHigh(lowAB, lowCD), JoinLow(highAB, highCD), JoinHigh(highAB, highCD)};
}

inline void StoreQuads(const QuadPack& pack, Quad* quads)
{
    const FloatPack lowXY = InterleaveLow(pack.x, pack.y), highXY = InterleaveHigh(pack.x, pack.y);
    const FloatPack lowZW = InterleaveLow(pack.z, pack.w), highZW = InterleaveHigh(pack.z, pack.w);
    StoreRow(JoinLow(lowXY, lowZW), quads);
    StoreRow(JoinHigh(lowXY, lowZW), quads + 1);
    StoreRow(JoinLow(highXY, highZW), quads + 2);
    StoreRow(JoinHigh(highXY, highZW), quads + 3);
}

inline void StoreShorts(ShortPack pack, int16_t* to) { memcpy(to, &pack, sizeof pack); }
} // namespace corvane::KERNEL_ISA

#endif
