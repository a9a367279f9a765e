// Operations in a row: what `brix run` does to a model after the --. Every step is a word and its numbers or files; a table says
// which steps there are, so that a new operation is one more line.
#pragma once

#include "Grid.h"

#include <string>
#include <vector>

namespace brix::tools {

/// What the steps of a pipeline work on.
struct Pipeline
{
    const GridOptions& grid; // for files that steps read
    bool ascii = false;      // write ASCII instead of binary STL
    VoxelModel<bool> model;
    std::optional<VoxelModel<bool>> guide{}; // for the growth and shrinkage steps that follow
    bool autoAdjust = false;                 // for those and for boolean steps
};

/// Throws UsageError when a word is no step, or has not the arguments that it needs; so that nothing is computed before all is read.
void RequireSteps(const std::vector<std::string>& words);

/// Carries the steps out, printing a line for each. Throws what the operations throw.
void RunSteps(Pipeline& pipeline, const std::vector<std::string>& words);

/// A line for each step, for the help of a command.
std::string DescribeSteps();

} // namespace brix::tools
