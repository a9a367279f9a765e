// The voxels that operations are measured on, each as a model, as dense words and beside a second set to combine it with.
#pragma once

#include "DenseBaselines.h"
#include "Scenes.h"

#include <vector>

namespace brix::benchmarks {

struct OperationScene
{
    OperationScene(VoxelModel<bool> voxels, Extents surroundings);

    std::int64_t Level() const { return model.FinestLOD(); }

    VoxelModel<bool> model;
    Extents extents; // at the finest level
    DenseWords dense;
    DenseWords otherDense; // the same voxels moved by 64, 24 and 20 voxels, where that stays inside
    VoxelModel<bool> other;
};

/// bunny-shell, bunny-solid (with its inside filled), building, city: so many voxels along the longest side. noise, dust: a cube
/// with so many, half or an eighth of them filled at random. Made at first use and kept.
const OperationScene& SceneOfOperations(const std::string& name, std::int64_t voxels);

/// 100,000 voxels of the scene's extents, the same each time.
std::vector<Triple> RandomPlaces(const OperationScene& scene);

/// Whether the files that the scene needs are there.
bool HasOperationScene(const std::string& name);

} // namespace brix::benchmarks
