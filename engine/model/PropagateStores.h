// The levels of one chunk, made to agree with one of them.
#pragma once

#include "InstructionSet.h"
#include "VoxelStore.h"

#include <span>

namespace brix {

/// Rebuilds every other level of a chunk from level `lod`. `stores` are the chunk's, by level.
void PropagateStores(std::span<VoxelStore<bool>> stores, std::int64_t lod, InstructionSet instructionSet);

} // namespace brix
