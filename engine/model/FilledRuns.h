// A model's filled voxels as runs along x (run-length coding), in lattice order.
#pragma once

#include "VoxelModel.h"

#include <functional>

namespace brix {

/// Filled voxels of one row, indices at a level: those from lowerX to upperX (inclusive) at (y, z). The voxels before and after
/// are not filled.
struct FilledRun
{
    std::int64_t lowerX, upperX, y, z;
    bool operator==(const FilledRun&) const = default;
};

/// Calls visit(run) for all runs of a level, 0..FinestLOD(): z outermost, then y, then x. The visitor must not change the model.
/// Throws std::domain_error when the level is negative or beyond the model's finest one, and passes on what the visitor throws.
/// Cost: 64 heights of every stack that is not empty, and a call for every run. Memory: 40 bytes for each such stack of one
/// height of chunks.
void ForEachFilledRun(const VoxelModel<bool>& model, std::int64_t lod, const std::function<void(const FilledRun&)>& visit);

} // namespace brix
