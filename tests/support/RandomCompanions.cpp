#include "RandomCompanions.h"

namespace brix::tests {
namespace {

// Extents of the same level that share at least one voxel with others.
Extents Overlapping(Random& random, const Extents& first)
{
    Triple lower{};
    Triple upper{};
    for (std::size_t i = 0; i < 3; ++i) {
        const std::int64_t shared = random.Between(first.LowerIndices()[i], first.UpperIndices()[i]);
        lower[i] = shared - random.Between(0, 12);
        upper[i] = shared + random.Between(0, 12);
    }
    return Extents(first.AxesRef(), lower, upper, first.VoxelLOD());
}

Extents Beside(Random& random, const Extents& first)
{
    const auto axis = static_cast<std::size_t>(random.Between(0, 2));
    const std::int64_t distance = first.UpperIndices()[axis] - first.LowerIndices()[axis] + 1 + random.Between(0, 1) * 9;
    Triple step{};
    step[axis] = random.OneIn(2) ? distance : -distance;
    return Extents(first.AxesRef(), Plus(first.LowerIndices(), step), Plus(first.UpperIndices(), step), first.VoxelLOD());
}

ReferenceModel ContentAtSomeLevel(Random& random, const Extents& extents)
{
    const std::int64_t finestLOD = extents.VoxelLOD();
    const std::int64_t lod = random.OneIn(3) ? random.Between(std::max<std::int64_t>(finestLOD - 2, 0), finestLOD) : finestLOD;
    return RandomContent(random, extents, finestLOD, lod);
}

} // namespace

const char* NameOf(Placement placement)
{
    constexpr std::array names{"same extents", "other level", "other extents", "disjoint", "covering"};
    return names[static_cast<std::size_t>(placement)];
}

std::int64_t LevelNear(Random& random, std::int64_t lod, std::int64_t distance)
{
    return NearestLevel(random.Between(lod - distance, lod + distance));
}

Extents MakeCompanionExtents(Random& random, const Extents& first, Placement placement)
{
    if (placement == Placement::SameExtents) return first;
    if (placement == Placement::OtherExtents) return Overlapping(random, first);
    if (placement == Placement::Disjoint) return Beside(random, first);
    while (placement == Placement::OtherLevel) {
        const std::int64_t lod = LevelNear(random, first.VoxelLOD(), 2);
        if (lod != first.VoxelLOD()) return Overlapping(random, first.RescaledCopy(lod));
    }
    const std::int64_t more = random.Between(1, 4);
    return Extents(first.AxesRef(), Minus(first.LowerIndices(), {more, more, 2}), Plus(first.UpperIndices(), {1, more, more}),
                   first.VoxelLOD());
}

ReferenceModel MakeCompanion(Random& random, const ReferenceModel& first, Placement placement)
{
    return ContentAtSomeLevel(random, MakeCompanionExtents(random, first.FinestExtentsRef(), placement));
}

ReferenceModel MakeFirst(Random& random)
{
    const Axes axes = RandomAxes(random);
    return ContentAtSomeLevel(random, RandomExtents(random, axes, random.Between(0, 5)));
}

} // namespace brix::tests
