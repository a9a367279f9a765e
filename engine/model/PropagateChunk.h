// What operations use in place of PropagateLevel, whose work they finish: a host has no references into their results yet.
#pragma once

#include "ForEachStack.h"
#include "InstructionSet.h"

namespace brix {

/// Rebuilds every other level of a model from level `lod`, and gives back the memory of empty chunks and of the stacks of levels
/// that are empty or full throughout.
void PropagateResult(VoxelModel<bool>& model, std::int64_t lod);

/// The same for one chunk, for operations that write chunk by chunk; the chunk holds the levels 0..finestLOD.
void PropagateChunk(VoxelChunk<bool>& chunk, std::int64_t lod, std::int64_t finestLOD, InstructionSet instructionSet);

} // namespace brix
