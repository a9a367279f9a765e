#include "MergedExtents.h"

#include "../frame/Require.h"

namespace brix {
namespace {

struct IndexBox
{
    Triple lower;
    Triple upper;

    bool IsEmpty() const { return lower[0] > upper[0] || lower[1] > upper[1] || lower[2] > upper[2]; }
    Extents ToExtents(const Axes& axes, std::int64_t lod) const { return Extents(axes, lower, upper, lod); }
};

} // namespace

void RequireSameAxes(const ModelPointers& models)
{
    for (const VoxelModel<bool>* model : models) Require(model != nullptr, "No voxel model to be merged can be null.");
    for (const VoxelModel<bool>* model : models) {
        Require(model->AxesRef() == models.front()->AxesRef(), "The axes must be the same for all voxel models to be merged.");
    }
}

Extents BoundingExtents(const ModelPointers& models, std::int64_t lod)
{
    IndexBox box{{MaxCoordinate, MaxCoordinate, MaxCoordinate}, {-MaxCoordinate, -MaxCoordinate, -MaxCoordinate}};
    for (const VoxelModel<bool>* model : models) {
        const Extents extents = model->ExtentsRef(model->FinestLOD()).RescaledCopy(lod);
        box = {Lowest(box.lower, extents.LowerIndices()), Highest(box.upper, extents.UpperIndices())};
    }
    return box.ToExtents(models.front()->AxesRef(), lod);
}

std::optional<Extents> CommonExtents(const ModelPointers& models, std::int64_t lod)
{
    IndexBox box{{-MaxCoordinate, -MaxCoordinate, -MaxCoordinate}, {MaxCoordinate, MaxCoordinate, MaxCoordinate}};
    for (const VoxelModel<bool>* model : models) {
        const Extents extents = model->ExtentsRef(model->FinestLOD()).RescaledCopy(lod);
        box = {Highest(box.lower, extents.LowerIndices()), Lowest(box.upper, extents.UpperIndices())};
    }
    if (box.IsEmpty()) return std::nullopt;
    return box.ToExtents(models.front()->AxesRef(), lod);
}

} // namespace brix
