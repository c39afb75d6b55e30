#include "isa.h"

namespace corvane::core
{
bool Runs(InstructionSet set)
{
    switch (set)
    {
    case InstructionSet::Base:
        return true;
    case InstructionSet::Avx2:
#if defined(__x86_64__)
        return __builtin_cpu_supports("avx2");
#else
        return false;
#endif
    }
    return false;
}
} // namespace corvane::core
