// Voxels in the format of OpenVDB, .vdb, where the program has that part.
#pragma once

#include <brix/model/VoxelModel.h>

#include <iosfwd>

namespace brix::tools {

/// Writes the filled voxels of a level as one grid of floats named "density", a fog volume of 1 where one is filled, with the
/// frame as its transform: sample (i, j, k) is the voxel of these indices, its centre where the frame has it. `hasYUp`: the
/// world of the file has its Y axis up, (X, Y, Z) become (X, Z, -Y). Blocks of 8 x 8 x 8 voxels that are cut by the surface take
/// a float for each voxel of memory, those that are full next to none.
/// Throws std::runtime_error when the program has no such part, or the stream fails.
void WriteVdb(const VoxelModel<bool>& model, std::int64_t lod, std::ostream& stream, bool hasYUp);

/// Throws std::runtime_error when the program has no such part.
void RequireVdb();

/// The memory that this takes at most beside the model. Cost: a look at all plates.
double BytesToWriteVdb(const VoxelModel<bool>& model, std::int64_t lod);

} // namespace brix::tools
