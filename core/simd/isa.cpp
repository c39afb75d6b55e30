#include "isa.h"

#include <atomic>

#if defined(_MSC_VER)
#include <immintrin.h>
#include <intrin.h>
#endif

namespace corvane::core
{
namespace
{
std::atomic<InstructionSet> widestAllowed = InstructionSet::Avx2;

bool MachineHasAvx2()
{
#if defined(_MSC_VER) && defined(_M_X64)
    // The processor knows AVX2 (leaf 7, EBX bit 5), and the operating system keeps the registers of AVX (leaf 1, ECX
    // bits 27 and 28; XCR0 bits 1 and 2).
    // Source: Intel 64 and IA-32 Architectures Software Developer's Manual, volume 1, 14.7.1.
    int registers[4];
    __cpuid(registers, 0);
    if (registers[0] < 7)
        return false;
    __cpuid(registers, 1);
    if ((registers[2] >> 27 & 3) != 3 || (_xgetbv(0) & 6) != 6)
        return false;
    __cpuidex(registers, 7, 0);
    return registers[1] >> 5 & 1;
#elif defined(__x86_64__)
    return __builtin_cpu_supports("avx2");
#else
    return false;
#endif
}
} // namespace

bool Runs(InstructionSet set) { return set <= widestAllowed && (set == InstructionSet::Base || MachineHasAvx2()); }

void LimitInstructionSet(InstructionSet widest) { widestAllowed = widest; }
} // namespace corvane::core
