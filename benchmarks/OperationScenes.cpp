#include "OperationScenes.h"

#include "operations/FillOperations.h"
#include "operations/SolidOperations.h"
#include "operations/SurfaceOperations.h"
#include "triangles/Voxelization.h"

#include <map>
#include <memory>
#include <random>

namespace brix::benchmarks {
namespace {

constexpr std::int64_t Level = GriddedScene::FinestLOD;

DenseWords Moved(const DenseWords& voxels)
{
    DenseWords moved = voxels;
    std::fill(moved.words.begin(), moved.words.end(), 0);
    for (std::int64_t z = 20; z < voxels.size[2]; ++z) {
        for (std::int64_t y = 24; y < voxels.size[1]; ++y) {
            for (std::int64_t i = 1; i < voxels.wordsPerRow; ++i)
                moved.Row(y, z)[i] = voxels.Row(y - 24, z - 20)[i - 1] & voxels.inside[static_cast<std::size_t>(i)];
        }
    }
    return moved;
}

// Every voxel is filled with a chance of one half to the power of `rarity`.
VoxelModel<bool> Noise(std::int64_t voxels, int rarity)
{
    const Extents extents(Axes(32, {0, 0, 0}, 0, Level), {0, 0, 0}, {voxels - 1, voxels - 1, voxels - 1}, Level);
    DenseWords dense(extents);
    std::mt19937_64 random(1);
    for (std::uint64_t& word : dense.words) {
        word = random();
        for (int i = 1; i < rarity; ++i) word &= random();
    }
    return ModelOf(dense, extents, Level);
}

VoxelModel<bool> Voxelized(const std::string& scene, std::int64_t voxels)
{
    const GriddedScene& gridded = Gridded(scene, voxels);
    VoxelModel<bool> model(gridded.extents, Level);
    VoxelizeTriangleModel(model, gridded.filed);
    return model;
}

// The bunny's mesh has holes in its base, through which a fill leaves. Along y they are narrower than a sixth of the bunny, so
// that they close when the shell grows along y, and a little along z, as the base is not even. What is enclosed then grows back
// as far as the shell itself.
VoxelModel<bool> Solid(const VoxelModel<bool>& shell, std::int64_t voxels)
{
    const int reach = static_cast<int>(voxels / 11);
    const int rise = static_cast<int>(voxels / 64);
    const VoxelModel<bool> grown = ExpandAlongZ(ExpandAlongY(shell, reach, reach, {}, false), rise, rise, {}, false);
    const VoxelModel<bool> core = Subtract(FillEnclosedRegions(grown), grown, Level, false);
    const VoxelModel<bool> inside = ExpandAlongY(ExpandAlongZ(core, rise, rise, shell, false), reach, reach, shell, false);
    return Union({&shell, &inside}, Level, false);
}

VoxelModel<bool> VoxelsOf(const std::string& name, std::int64_t voxels)
{
    if (name == "noise") return Noise(voxels, 1);
    if (name == "dust") return Noise(voxels, 3);
    if (name == "bunny-shell") return Voxelized("bunny", voxels);
    if (name == "bunny-solid") return Solid(Voxelized("bunny", voxels), voxels);
    return Voxelized(name, voxels);
}

} // namespace

OperationScene::OperationScene(VoxelModel<bool> voxels, Extents surroundings)
    : model(std::move(voxels)),
      extents(std::move(surroundings)),
      dense(model),
      otherDense(Moved(dense)),
      other(ModelOf(otherDense, extents, model.FinestLOD()))
{}

const OperationScene& SceneOfOperations(const std::string& name, std::int64_t voxels)
{
    static std::map<std::pair<std::string, std::int64_t>, std::unique_ptr<OperationScene>> made;
    auto& scene = made[{name, voxels}];
    if (!scene) {
        VoxelModel<bool> model = VoxelsOf(name, voxels);
        Extents extents = model.ExtentsRef(Level);
        scene = std::make_unique<OperationScene>(std::move(model), std::move(extents));
    }
    return *scene;
}

bool HasOperationScene(const std::string& name)
{
    const std::string source = name.substr(0, name.find('-'));
    return name == "noise" || name == "dust" || std::find(SceneNames().begin(), SceneNames().end(), source) != SceneNames().end();
}

std::vector<Triple> RandomPlaces(const OperationScene& scene)
{
    std::mt19937_64 random(7);
    std::vector<Triple> places(100'000);
    const Triple lower = scene.extents.LowerIndices();
    const Triple upper = scene.extents.UpperIndices();
    for (Triple& place : places) {
        for (std::size_t i = 0; i < 3; ++i)
            place[i] = lower[i] + static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(upper[i] - lower[i] + 1));
    }
    return places;
}

} // namespace brix::benchmarks
