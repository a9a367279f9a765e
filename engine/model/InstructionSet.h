// Hot loops are compiled twice: portably, and for x86 processors with AVX2 and the bit instructions that came with it. Which one
// runs is asked of the processor. Both give the same bits; tests run both.
#pragma once

namespace brix {

enum class InstructionSet
{
    Portable,
    Avx2
};

#if defined(__x86_64__) && defined(__GNUC__)

inline InstructionSet FastestInstructionSet()
{
    const bool hasAll = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2") &&
                        __builtin_cpu_supports("popcnt");
    return hasAll ? InstructionSet::Avx2 : InstructionSet::Portable;
}

// `flatten` pulls everything that the work calls into this one function, so that no function compiled for AVX2 can be linked into
// code that runs on older processors. Where sanitizers look at every access, one function of that size takes a compiler a quarter
// of an hour: there both ways run the portable code.
#ifdef BRIX_SANITIZED
template <class Work> void RunWithAvx2(const Work& work) { work(); }
#else
template <class Work> [[gnu::target("avx2,bmi,bmi2,popcnt"), gnu::flatten]] void RunWithAvx2(const Work& work) { work(); }
#endif

/// Runs work() in the code compiled for an instruction set, which the processor must have.
template <class Work> void RunWith(InstructionSet instructionSet, const Work& work)
{
    if (instructionSet == InstructionSet::Avx2)
        RunWithAvx2(work);
    else
        work();
}

#else

inline InstructionSet FastestInstructionSet() { return InstructionSet::Portable; }

template <class Work> void RunWith(InstructionSet, const Work& work) { work(); }

#endif

} // namespace brix
