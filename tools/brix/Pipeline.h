// Operations in a row: what `brix run` does to a model after the --. All words are read, all files looked at and all steps
// rehearsed on a model of one voxel before the first one works, so that nothing that could have been told at once is told after
// minutes.
#pragma once

#include "FilePlan.h"
#include "Grid.h"
#include "OutputFiles.h"

#include <functional>
#include <optional>
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
    bool isRehearsal = false;                // files are neither read nor written, extents do not follow
};

/// What is known before there is a model.
struct Plan
{
    FilePlan files;
    std::int64_t lod;                    // the finest level, as the steps so far leave it
    bool mayHaveGrown = false;           // beyond the extents of the input
    std::vector<SlicePosition> slices{}; // in models that have not grown: the input's extents must hold them
};

/// A step with its arguments.
struct Action
{
    PlannedStep step;
    std::function<void(Pipeline&)> run;
};

/// Reads the words of all steps. Throws UsageError when a word is no step, or lacks arguments that it needs, and as FilePlan.
std::vector<Action> ReadSteps(const std::vector<std::string>& words, Plan& plan);

/// Throws UsageError when a step will refuse its arguments.
void Rehearse(const std::vector<Action>& actions, const GridOptions& grid);

/// Carries the steps out, telling each. Throws what the operations throw.
void RunSteps(Pipeline& pipeline, const std::vector<Action>& actions);

/// A line for each step, for the help of a command.
std::string DescribeSteps();

} // namespace brix::tools
