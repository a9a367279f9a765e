// How much memory an operation takes at most, estimated before it begins, so that whoever asks for too much is told so in time.
//
// An estimate is what the operation takes of the heap at one moment beside what it is given, its result included. It follows how
// models are stored (docs/model.md), and which stacks the operation can reach: those that hold something, and their neighbours as
// far as voxels may move. Tests hold that random models never take more nor, from
// 200 kB on, less than a fiftieth.
//
// Estimates are made of sizes (ModelSize.h): of models that are there, SizeOf(model, lod), or are still to be made. Sizes of
// several models have to be of one level, that at which the operation works: Refined(size, lod) brings them there.
// Cost of each: a handful of sums.
#pragma once

#include "../model/ModelSize.h"

#include <span>

namespace brix {

// ---- Sizes of results

/// At a finer level, as Refine makes it.
[[nodiscard]] ModelSize Refined(const ModelSize& size, std::int64_t lod);
/// Sized up at a level that the model may not hold: as it is there, or refined to it.
/// Throws std::domain_error when there is no such level.
[[nodiscard]] ModelSize SizeAtLevel(const VoxelModel<bool>& model, std::int64_t lod);
/// On other extents, larger or smaller ones.
[[nodiscard]] ModelSize Within(const ModelSize& size, const Extents& extents);
/// Where any of the models holds something, on given extents.
[[nodiscard]] ModelSize Joined(std::span<const ModelSize> sizes, const Extents& extents);
/// With all that is empty filled, wherever that is.
[[nodiscard]] ModelSize Inverted(const ModelSize& size);
/// Grown by numbers of voxels along x, y and z, both sides together.
[[nodiscard]] ModelSize Grown(const ModelSize& size, const Triple& voxels);

// ---- Bytes that operations take

/// Crop, Enlarge, AutoCrop, Relocate and Resize to extents.
[[nodiscard]] double BytesToRebuild(const ModelSize& size, const Extents& newExtents);
[[nodiscard]] double BytesToRefine(const ModelSize& size, std::int64_t lod);
/// Union, Intersect and Subtract of models; of `copied` bytes, the models that are copied first, as Subtract does with one that
/// is finer than its result.
[[nodiscard]] double BytesToCombine(std::span<const ModelSize> sizes, const Extents& extents, double copied = 0);
[[nodiscard]] double BytesToInvert(const ModelSize& size);
/// FillFromPoint, FillExposedRegions and FillEnclosedRegions.
[[nodiscard]] double BytesToFill(const ModelSize& size);
[[nodiscard]] double BytesToFillSealed(const ModelSize& size, std::int64_t gap);
[[nodiscard]] double BytesToFindLeak(const ModelSize& size);
/// AutoSplit. Looks at every bit run of the model.
[[nodiscard]] double BytesToSplit(const VoxelModel<bool>& model);
/// DensityMap at so many thresholds; `isEverywhere` when one of them is 0 or less.
[[nodiscard]] double BytesToMapDensity(std::span<const ModelSize> sizes, const Extents& extents, double thresholdCount,
                                       bool isEverywhere);
/// Growth and shrinkage on extents, by numbers of voxels along x, y and z (both sides together), with the size of a guide, if
/// any.
[[nodiscard]] double BytesToGrow(const ModelSize& size, const Triple& voxels, const ModelSize* guide);
/// All that is in Visibility.h, on the extents that are swept.
[[nodiscard]] double BytesToSee(const ModelSize& size, const Extents& extents);
/// A path model, for agents of these sizes.
[[nodiscard]] double BytesToStand(const ModelSize& size, std::int64_t agentDiameter, std::int64_t agentHeight);
/// Sample points, and distance fields, of so many traversable voxels.
[[nodiscard]] double BytesToWalk(const ModelSize& size, double voxelCount);
/// The boxes of Tessellation, CuboidizeVoxelModel and SolidizeVoxelModel: of so many bit runs, BitRunCount(model, lod).
[[nodiscard]] double BytesToTessellate(double runCount);
[[nodiscard]] double BytesToCuboidize(double runCount);
[[nodiscard]] double BytesToSolidize(double runCount);
/// The rows of SliceRows.h, which are vectors of bits.
[[nodiscard]] double BytesOfRows(double rowCount, double rowLength);

/// Runs of filled voxels along x in all layers of a level, a layer taken once whatever its height.
/// Throws std::domain_error when the level is negative or beyond the finest one.
[[nodiscard]] double BitRunCount(const VoxelModel<bool>& model, std::int64_t lod);

} // namespace brix
