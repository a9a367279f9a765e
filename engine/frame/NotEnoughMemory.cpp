#include "NotEnoughMemory.h"

#include <cstdio>

namespace brix {

NotEnoughMemory::NotEnoughMemory(const char* model, const Extents& extents) noexcept
{
    const auto [x, y, z] = Plus(Minus(extents.UpperIndices(), extents.LowerIndices()), {1, 1, 1});
    std::snprintf(sentence_.data(), sentence_.size(),
                  "There is not enough memory for %s of %lld x %lld x %lld voxels at level %lld.", model,
                  static_cast<long long>(x), static_cast<long long>(y), static_cast<long long>(z),
                  static_cast<long long>(extents.VoxelLOD()));
}

} // namespace brix
