// One chunk's share of PropagateLevel, for operations that write chunk by chunk.
#pragma once

#include "ForEachStack.h"
#include "InstructionSet.h"

namespace brix {

/// Rebuilds every other level of a chunk that holds the levels 0..finestLOD from level `lod`.
void PropagateChunk(VoxelChunk<bool>& chunk, std::int64_t lod, std::int64_t finestLOD, InstructionSet instructionSet);

} // namespace brix
