#ifndef CORVANE_CORE_SIMD_ISA_H
#define CORVANE_CORE_SIMD_ISA_H

#include <cstddef>
#include <span>

namespace corvane::core
{
// Instruction sets that kernels are compiled for, narrower ones first. Base is what every processor of the target has.
enum class InstructionSet
{
    Base,
    Avx2,
};

// Whether this machine, its operating system included, runs code of an instruction set, and no limit forbids it.
bool Runs(InstructionSet set);

// Keeps what is drawn from now on to an instruction set and narrower ones, so that tests can compare them.
void LimitInstructionSet(InstructionSet widest);

// Those of a family's copies that this machine runs: given for Base first, then, where it is compiled at all, for Avx2.
template <class Table, std::size_t count>
std::span<const Table* const> Runnable(const Table* const (&copies)[count])
{
    return std::span(copies).first(count > 1 && Runs(InstructionSet::Avx2) ? count : 1);
}
} // namespace corvane::core

#endif
