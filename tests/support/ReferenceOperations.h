// The operations written out voxel by voxel for ReferenceModel. Each has the name and the arguments of the engine's operation, so
// that a test runs one expression on both. They are as plain as they can be made: whole copies, one voxel per pass, no case left
// out.
#pragma once

#include "ReferenceModel.h"

#include <optional>

namespace brix::tests {

using ReferenceGuide = std::optional<ReferenceModel>;

std::int64_t CountFilled(const ReferenceModel& model, std::int64_t lod);
bool IsEmpty(const ReferenceModel& model, std::int64_t lod);
bool IsFull(const ReferenceModel& model, std::int64_t lod);

ReferenceModel Crop(const ReferenceModel& model, std::int64_t lowerX, std::int64_t upperX, std::int64_t lowerY,
                    std::int64_t upperY, std::int64_t lowerZ, std::int64_t upperZ);
ReferenceModel Enlarge(const ReferenceModel& model, std::int64_t lowerX, std::int64_t upperX, std::int64_t lowerY,
                       std::int64_t upperY, std::int64_t lowerZ, std::int64_t upperZ);
ReferenceModel AutoCrop(const ReferenceModel& model);
ReferenceModel Resize(const ReferenceModel& model, const Extents& newExtents);
ReferenceModel Relocate(const ReferenceModel& model, const Axes& newAxes);
ReferenceModel Refine(const ReferenceModel& model, std::int64_t lod);

ReferenceModel Union(const std::vector<const ReferenceModel*>& models, std::int64_t lod, bool autoCrop);
ReferenceModel Intersect(const std::vector<const ReferenceModel*>& models, std::int64_t lod, bool autoCrop);
ReferenceModel Subtract(const ReferenceModel& model, const ReferenceModel& subtrahend, std::int64_t lod, bool autoCrop);
ReferenceModel Invert(const ReferenceModel& model);

/// The six operations along an axis.
ReferenceModel ExpandAlong(Axis axis, const ReferenceModel& model, int lowerOffset, int upperOffset, const ReferenceGuide& guide,
                           bool autoAdjustExtents);
ReferenceModel ReduceAlong(Axis axis, const ReferenceModel& model, int lowerOffset, int upperOffset, const ReferenceGuide& guide,
                           bool autoAdjustExtents);

ReferenceModel ExpandByOneVoxel(const ReferenceModel& model, int horizontalAdjacency, int verticalAdjacency,
                                const ReferenceGuide& guide, bool autoAdjustExtents);
ReferenceModel ReduceByOneVoxel(const ReferenceModel& model, int horizontalAdjacency, int verticalAdjacency,
                                const ReferenceGuide& guide, bool autoAdjustExtents);
ReferenceModel ExpandHorizontally(const ReferenceModel& model, int diameterOffset, const ReferenceGuide& guide,
                                  bool autoAdjustExtents);
ReferenceModel ReduceHorizontally(const ReferenceModel& model, int diameterOffset, const ReferenceGuide& guide,
                                  bool autoAdjustExtents);

/// How many of a voxel's four neighbours beside it, and of its two below and above it, are filled.
int CountBeside(const ReferenceModel& model, const Triple& voxel);
int CountStacked(const ReferenceModel& model, const Triple& voxel);

/// Where two models of the engine differ: frame, bounds, finest level or any stack; empty when they do not. Equal stacks have
/// equal layers, so this is quick, and models may be larger than those that are compared voxel by voxel.
std::string Differences(const VoxelModel<bool>& actual, const VoxelModel<bool>& expected);

/// Where the finest level of a model differs from what it was made of: whether an operation has changed its input.
std::string Changes(const VoxelModel<bool>& model, const ReferenceModel& original);

} // namespace brix::tests
