// How much memory the work will take, estimated before it begins, so that a slip in the voxels' size is answered with numbers and
// not with a dead machine. The estimates are the engine's, or follow from its sizes of models; they are meant to be too
// high rather than too low. What is beyond them ends at the limit, too, of which the system is told.
#pragma once

#include "Grid.h"

#include <vector>

namespace brix::tools {

/// --memory-limit in bytes; without it, half of what the machine, the control group and `ulimit -v` leave to the program.
double MemoryLimit(const GridOptions& options);

/// From here on, the system refuses memory beyond the limit, and the program ends with a sentence.
void HoldMemoryLimit(const GridOptions& options);

/// Throws std::runtime_error when a model of the input, or one of the steps that follow, would take more than the limit. The
/// sentence names the estimate, the limit and the size of voxels that would fit.
void RequireMemoryForModel(const Input& input, const GridOptions& options, const std::vector<PlannedStep>& steps);

/// The same for one step, when the model is there.
void RequireMemoryForStep(const PlannedStep& step, const VoxelModel<bool>& model, const GridOptions& options);

/// How many triangles a step will write is known only when their voxels are: counted, before the first one is made.
/// Throws std::runtime_error when so many triangles would take more memory than the limit, or a larger file than --output-limit.
/// `bytesBeside` each of them, its part of what it is made from is in memory.
void RequireSpaceForTriangles(double triangleCount, double bytesBeside, bool ascii, const VoxelModel<bool>& model,
                              const GridOptions& options);

/// The same for what writing a file takes beside the model.
void RequireMemoryToWrite(double bytesBeside, const VoxelModel<bool>& model, const GridOptions& options);

} // namespace brix::tools
