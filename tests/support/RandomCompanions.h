// A second model for a first one: what operations on several models of one frame have to cope with.
#pragma once

#include "RandomModels.h"

namespace brix::tests {

/// How the second model lies to the first one.
enum class Placement
{
    SameExtents,
    OtherLevel, // its finest level is up to two levels coarser or finer; it overlaps the first model
    OtherExtents,
    Disjoint, // often face to face
    Covering
};
inline constexpr std::array AllPlacements{Placement::SameExtents, Placement::OtherLevel, Placement::OtherExtents,
                                          Placement::Disjoint, Placement::Covering};

/// A placement in words, for failure messages.
const char* NameOf(Placement placement);

/// A level at most `distance` levels coarser or finer than another.
std::int64_t LevelNear(Random& random, std::int64_t lod, std::int64_t distance);

/// Extents that lie so to others, at another level of the same frame for Placement::OtherLevel.
Extents MakeCompanionExtents(Random& random, const Extents& first, Placement placement);

/// Random content on such extents, often written at a coarser level than its finest one.
ReferenceModel MakeCompanion(Random& random, const ReferenceModel& first, Placement placement);

/// Random content of any frame and extents, often written at a coarser level than its finest one.
ReferenceModel MakeFirst(Random& random);

} // namespace brix::tests
