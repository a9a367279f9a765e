// Random models, each made from a seed that failures print. Small, and placed where faults live: across zero and across the
// borders of plates, stacks and chunks.
#pragma once

#include "Random.h"
#include "ReferenceModel.h"

#include <ostream>

namespace brix::tests {

struct RandomModel
{
    std::uint64_t seed;
    ReferenceModel reference; // what `voxels` holds, at the level that was written
    VoxelModel<bool> voxels;
};

/// Shows seed, levels, bounds and count, so that a failure can be repeated.
std::ostream& operator<<(std::ostream& output, const RandomModel& model);

/// A frame with any vertical level; half of the frames are rotated and moved.
Axes RandomAxes(Random& random);

/// At most 30 x 30 x 72 voxels of a level, near a border; some are a single voxel.
Extents RandomExtents(Random& random, const Axes& axes, std::int64_t lod);

/// Content of a random kind at a level: nothing, everything, sparse points, noise, boxes, vertical runs or repeated layers.
ReferenceModel RandomContent(Random& random, const Extents& extents, std::int64_t finestLOD, std::int64_t lod);

/// A model of random frame, extents and finest level, written at its finest level.
RandomModel MakeRandomModel(std::uint64_t seed);

/// The models of the seeds firstSeed .. firstSeed + count - 1.
std::vector<RandomModel> RandomModels(std::uint64_t firstSeed, std::uint64_t count);

} // namespace brix::tests
