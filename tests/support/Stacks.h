// Stacks and the plain array of 64 plates that each of them stands for.
#pragma once

#include "Random.h"
#include "model/VoxelStack.h"

#include <string>

namespace brix::tests {

/// The plate of every height of a stack.
using Heights = std::array<VoxelPlate<bool>, 64>;

/// The heights of a stack, read layer by layer.
Heights HeightsOf(const VoxelStack<bool>& stack);

/// The stack of these heights, with the fewest layers.
VoxelStack<bool> MakeStack(const Heights& heights);

/// Few or many layers, of empty, full, boxed and noisy plates.
Heights RandomHeights(Random& random);

/// Why the layers of a stack do not part 0..63 from bottom to top; empty when they do.
std::string LayerFault(const VoxelStack<bool>& stack);

/// Why a stack is not the one that its content must have: a layer fault, an unmerged layer, memory that it need not own.
std::string CanonicalFault(const VoxelStack<bool>& stack);

} // namespace brix::tests
