// The one oracle of all tests: the voxels of a level as a plain set, with the same operations as the engine's models, each
// written from its definition and voxel by voxel. It takes nothing from the engine but frames and extents.
#pragma once

#include "model/VoxelModel.h"

#include <string>
#include <vector>

namespace brix::tests {

class ReferenceModel
{
public:
    /// Empty. `extents` at any level; `lod` the level of the voxels, at most `finestLOD`, the finest level that models made of it
    /// hold.
    ReferenceModel(const Extents& extents, std::int64_t finestLOD, std::int64_t lod);

    /// The voxels of a model at a level.
    ReferenceModel(const VoxelModel<bool>& model, std::int64_t lod);

    const Axes& AxesRef() const { return extents_.AxesRef(); }
    std::int64_t FinestLOD() const { return finestExtents_.VoxelLOD(); }
    std::int64_t VoxelLOD() const { return extents_.VoxelLOD(); }

    /// The bounds in voxels of the reference's own level, and in those of the finest level.
    const Extents& ExtentsRef() const { return extents_; }
    const Extents& FinestExtentsRef() const { return finestExtents_; }

    /// Whether a voxel is filled. Any indices may be asked for: outside the extents, nothing is.
    bool Value(const Triple& voxel) const { return extents_.ContainsVoxel(voxel) && filled_[VoxelNumber(voxel)] != 0; }

    /// Fills or empties a voxel; one outside the extents stays empty.
    void Set(const Triple& voxel, bool value = true)
    {
        if (extents_.ContainsVoxel(voxel)) filled_[VoxelNumber(voxel)] = value;
    }

    std::int64_t CountFilled() const;

    /// Calls visit(voxel) for every voxel of the extents: z outermost, then y, then x.
    template <class Visit> void ForEachVoxel(Visit visit) const
    {
        ForEachTriple(extents_.LowerIndices(), extents_.UpperIndices(), visit);
    }

    /// A model that is filled where rule(voxel) holds, on the same extents or on others of the same level. Operations are one
    /// call:
    ///     a.Where([&](const Triple& voxel) { return a.Value(voxel) && !b.Value(voxel); })
    template <class Rule> ReferenceModel Where(Rule rule) const
    {
        return ReferenceModel(finestExtents_, FinestLOD(), VoxelLOD()).Fill(rule);
    }
    template <class Rule> ReferenceModel Where(const Extents& extents, Rule rule) const
    {
        return ReferenceModel(extents, FinestLOD(), VoxelLOD()).Fill(rule);
    }

    /// What a model holds at a level once all its levels agree with this one.
    ReferenceModel AtLevel(std::int64_t lod) const;

    /// Every level, 0..FinestLOD().
    std::vector<ReferenceModel> AllLevels() const;

private:
    std::size_t VoxelNumber(const Triple& voxel) const
    {
        const Triple offset = Minus(voxel, extents_.LowerIndices());
        return static_cast<std::size_t>((offset[2] * size_[1] + offset[1]) * size_[0] + offset[0]);
    }

    template <class Rule> ReferenceModel& Fill(Rule rule)
    {
        ForEachVoxel([&](const Triple& voxel) { Set(voxel, rule(voxel)); });
        return *this;
    }

    ReferenceModel Coarser() const;
    ReferenceModel Finer() const;
    std::int64_t LowestLayerEnd(const Triple& stack) const;

    Extents finestExtents_;
    Extents extents_;
    Triple size_;
    std::vector<std::uint8_t> filled_;
};

/// What voxels are sorted by: chunk, stack, then height, row and column.
std::array<std::int64_t, 8> OrderOf(const Triple& voxel, std::int64_t lod);

/// A voxel model with this content, written by stack edits at the reference's level and propagated to all others.
VoxelModel<bool> MakeModel(const ReferenceModel& reference);

/// Replaces one level of a model by this content and leaves the other levels as they are.
void WriteLevel(VoxelModel<bool>& model, const ReferenceModel& reference);

/// Where two sets of voxels differ, in words and drawings; empty when they do not.
std::string Differences(const ReferenceModel& actual, const ReferenceModel& expected);

/// Where a model differs from what it should hold: frame, bounds, any voxel of any level, or a broken invariant.
std::string Differences(const VoxelModel<bool>& model, const ReferenceModel& expected);

} // namespace brix::tests
