// Vectors of numbers that GCC and Clang turn into whatever vector instructions the function around them is compiled for. The
// usual operators work on all lanes at once; a comparison gives 0 or -1 in each lane.
//
// Functions take them by reference and give them back by reference: how a vector is passed depends on the instruction set.
#pragma once

#include <cstdint>

namespace brix {

/// Three numbers, of a point along x, y and z or of a triangle's three edges. The fourth is 0 or means nothing.
typedef std::int32_t Quad __attribute__((vector_size(16)));
typedef std::int64_t WideQuad __attribute__((vector_size(32)));
typedef double DoubleQuad __attribute__((vector_size(32)));

/// Eight rows of voxels side by side. Unsigned, because numbers of lanes and columns outside of a box may overflow; nobody asks
/// for their results.
typedef std::uint32_t Lanes __attribute__((vector_size(32)));
typedef std::int32_t SignedLanes __attribute__((vector_size(32)));

inline constexpr std::int32_t LaneCount = 8;
inline constexpr Lanes LaneNumbers{0, 1, 2, 3, 4, 5, 6, 7};

inline void KeepLower(Quad& a, const Quad& b) { a = a < b ? a : b; }
inline void KeepUpper(Quad& a, const Quad& b) { a = a > b ? a : b; }

/// Whether a comparison of points holds along x, y or z.
inline bool IsAnyOf(const Quad& comparison) { return (comparison[0] | comparison[1] | comparison[2]) != 0; }

} // namespace brix
