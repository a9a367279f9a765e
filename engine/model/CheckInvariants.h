// What must hold of every voxel model, checked the slow way.
#pragma once

#include "VoxelModel.h"

#include <string>

namespace brix {

/// Why a model is malformed; empty when it is not. Checks that the layers of every stack are canonical, that nothing is filled
/// outside the extents, and that all levels agree with `writtenLOD`, the level that the last operation wrote (0..FinestLOD()).
std::string CheckInvariants(const VoxelModel<bool>& model, std::int64_t writtenLOD);

} // namespace brix
