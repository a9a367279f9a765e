// Visibility, beside the plain sweep over dense arrays that its definition describes. The baseline reads and writes a byte per
// voxel and carries values in one plane of doubles, in place, so that it does not wait for memory; it makes one level, the engine
// all.
//
//   VisibilityOblique     direction (3, 2, -5)             VisibilityObliqueBaseline
//   VisibilityAlongX      direction (1, 0, 0)              VisibilityAlongXBaseline
//   VisibilityAlongZ      direction (0, 0, -1)             VisibilityAlongZBaseline
//   VisibilityFromPoint   from beside the scene            VisibilityFromPointBaseline
//   VisibilityCone        the same, 20 degrees along y     VisibilityConeBaseline: the same sweep, then a test of every voxel
//   VisibilityPyramid     60 x 40 degrees along (1, 3, -1) VisibilityPyramidBaseline
#include "Measure.h"
#include "model/ForEachStack.h"
#include "operations/BasicOperations.h"
#include "triangles/Voxelization.h"
#include "visibility/Visibility.h"

#include <cmath>
#include <cstring>

namespace brix::benchmarks {
namespace {

using State = benchmark::State;

constexpr std::int64_t Level = GriddedScene::FinestLOD;
constexpr double Threshold = 0.5;

// A byte per voxel of a box of indices: x, then y, then z.
struct DenseBytes
{
    explicit DenseBytes(const Extents& extents)
        : lower(extents.LowerIndices()),
          size(Plus(Minus(extents.UpperIndices(), lower), {1, 1, 1})),
          bytes(static_cast<std::size_t>(size[0] * size[1] * size[2]))
    {}

    std::size_t Number(std::int64_t x, std::int64_t y, std::int64_t z) const
    {
        return static_cast<std::size_t>((z * size[1] + y) * size[0] + x);
    }

    Triple lower;
    Triple size;
    std::vector<std::uint8_t> bytes;
};

DenseBytes ToBytes(const VoxelModel<bool>& model)
{
    const Extents& extents = model.ExtentsRef(Level);
    DenseBytes dense(extents);
    ForEachStoredStack(model, Level, [&](const VoxelStore<bool>& store, const StackIndices& ij) {
        const VoxelStack<bool>& stack = store.VoxelStackRef(ij);
        const Triple corner = Minus(store.LowerIndices(ij), dense.lower);
        ForEachTriple(store.LowerOffset(ij), store.UpperOffset(ij), [&](const Triple& offset) {
            const bool isFilled = stack.LayerVoxelPlateRef(stack.LayerID(offset[2])).Value({offset[0], offset[1]});
            dense.bytes[dense.Number(corner[0] + offset[0], corner[1] + offset[1], corner[2] + offset[2])] = isFilled;
        });
    });
    return dense;
}

// first, first + step .. last: the order of a sweep along one axis.
struct Range
{
    std::int64_t first, last, step;
};

// The plane holds the values of the height before, and behind the sweep already those of this one.
template <class Mix>
void SweepDensely(DenseBytes& visible, const DenseBytes& filled, const std::array<Range, 3>& ranges, const Mix& mix)
{
    const auto& [rangeX, rangeY, rangeZ] = ranges;
    std::vector<double> plane(static_cast<std::size_t>(filled.size[0] * filled.size[1]), 1.0);
    const std::vector<double> entering(static_cast<std::size_t>(filled.size[0]), 1.0);
    for (std::int64_t z = rangeZ.first; z != rangeZ.last + rangeZ.step; z += rangeZ.step) {
        for (std::int64_t y = rangeY.first; y != rangeY.last + rangeY.step; y += rangeY.step) {
            double* const row = plane.data() + y * filled.size[0];
            const double* const rowBefore = y == rangeY.first ? entering.data() : row - rangeY.step * filled.size[0];
            const std::size_t number = filled.Number(0, y, z);
            double a = 1.0;
            for (std::int64_t x = rangeX.first; x != rangeX.last + rangeX.step; x += rangeX.step) {
                const std::size_t voxel = number + static_cast<std::size_t>(x);
                double value = 0;
                if (filled.bytes[voxel] == 0) {
                    const double b = rowBefore[x];
                    const double c = row[x];
                    value = a == b && b == c ? a : std::min(1.0, mix(x, y, z, a, b, c));
                }
                visible.bytes[voxel] |= static_cast<std::uint8_t>(value >= Threshold);
                row[x] = value;
                a = value;
            }
        }
    }
}

Range Along(std::int64_t size, std::int64_t direction) { return direction < 0 ? Range{size - 1, 0, -1} : Range{0, size - 1, 1}; }

// Vertical and finest level of the scenes are the same, so that base units count voxels along all axes alike.
void SeeDenselyAlong(DenseBytes& visible, const DenseBytes& filled, const Triple& direction)
{
    const auto x = std::abs(static_cast<double>(direction[0]));
    const auto y = std::abs(static_cast<double>(direction[1]));
    const auto z = std::abs(static_cast<double>(direction[2]));
    const double length = std::sqrt(x * x + y * y + z * z);
    const std::array weights{x / length, y / length, z / length};
    const double normaliser = 1 / (weights[0] + weights[1] + weights[2]);
    SweepDensely(visible, filled,
                 {Along(filled.size[0], direction[0]), Along(filled.size[1], direction[1]), Along(filled.size[2], direction[2])},
                 [&](std::int64_t, std::int64_t, std::int64_t, double a, double b, double c) {
                     return (a * weights[0] + b * weights[1] + c * weights[2]) * normaliser;
                 });
}

// From the centre of an empty voxel.
void SeeDenselyFrom(DenseBytes& visible, const DenseBytes& filled, const Triple& eye)
{
    constexpr std::int64_t width = VoxelSpacing(Level) << Level; // of a voxel, as offsets are scaled
    const auto towards = [&](std::size_t i, std::int64_t octant) {
        return (octant >> i & 1) != 0 ? Range{eye[i], 0, -1} : Range{eye[i], filled.size[i] - 1, 1};
    };
    for (std::int64_t octant = 0; octant < 8; ++octant) {
        SweepDensely(visible, filled, {towards(0, octant), towards(1, octant), towards(2, octant)},
                     [&](std::int64_t i, std::int64_t j, std::int64_t k, double a, double b, double c) {
                         const auto x = static_cast<double>(width * std::abs(i - eye[0]));
                         const auto y = static_cast<double>(width * std::abs(j - eye[1]));
                         const auto z = static_cast<double>(width * std::abs(k - eye[2]));
                         return (x * a + y * b + z * c) / (x + y + z);
                     });
    }
}

// Of those, what lies where holds(x, y, z) says so, in voxels from the eye.
template <class Holds> void SeeDenselyWithin(DenseBytes& visible, const DenseBytes& filled, const Triple& eye, const Holds& holds)
{
    SeeDenselyFrom(visible, filled, eye);
    ForEachTriple({0, 0, 0}, Minus(filled.size, {1, 1, 1}), [&](const Triple& voxel) {
        std::array<double, 3> offset{};
        for (std::size_t i = 0; i < 3; ++i) offset[i] = static_cast<double>(voxel[i] - eye[i]);
        const bool isWithin = voxel == eye || holds(offset[0], offset[1], offset[2]);
        visible.bytes[visible.Number(voxel[0], voxel[1], voxel[2])] &= static_cast<std::uint8_t>(isWithin);
    });
}

constexpr double HalfDegree = 3.14159265358979323846 / 360;
constexpr double ConeAngle = 20;
constexpr Triple CameraDirection{1, 3, -1};
constexpr std::array<double, 2> CameraAngles{60, 40};

bool IsInCone(double x, double y, double z)
{
    static const double cosine = std::cos(ConeAngle * HalfDegree);
    return y >= cosine * std::sqrt(x * x + y * y + z * z);
}

// Forward is (1, 3, -1), to the right (3, -1, 0), up (1, 3, 10).
bool IsInView(double x, double y, double z)
{
    static const double horizontal = std::tan(CameraAngles[0] * HalfDegree);
    static const double vertical = std::tan(CameraAngles[1] * HalfDegree);
    const double forward = (x + 3 * y - z) / std::sqrt(11);
    return std::abs(3 * x - y) / std::sqrt(10) <= horizontal * forward &&
           std::abs(x + 3 * y + 10 * z) / std::sqrt(110) <= vertical * forward;
}

VoxelModel<bool> ModelOf(const GriddedScene& scene)
{
    VoxelModel<bool> model(scene.extents, Level);
    VoxelizeTriangleModel(model, scene.filed);
    return model;
}

// The engine and the baseline must see the same voxels, one by one.
template <class See, class SeeDensely>
void MeasureVisibility(State& state, const GriddedScene& scene, const See& see, const SeeDensely& seeDensely)
{
    const VoxelModel<bool> model = ModelOf(scene);
    const DenseBytes filled = ToBytes(model);
    DenseBytes expected(model.ExtentsRef(Level));
    seeDensely(expected, filled);
    RequireEqual("Voxels seen as in the dense sweep", ToBytes(see(model)).bytes == expected.bytes, true);
    MeasureResult(
        state, [&] { return see(model); }, [](const VoxelModel<bool>&) {});
    state.counters["seen"] = static_cast<double>(CountFilled(see(model), Level));
    state.counters["voxels"] = static_cast<double>(filled.bytes.size());
}

template <class SeeDensely> void MeasureDensely(State& state, const GriddedScene& scene, const SeeDensely& seeDensely)
{
    const VoxelModel<bool> model = ModelOf(scene);
    const DenseBytes filled = ToBytes(model);
    DenseBytes visible(model.ExtentsRef(Level));
    for (auto _ : state) {
        seeDensely(visible, filled);
        benchmark::ClobberMemory();
    }
}

void RegisterDirection(const std::string& name, const Triple& direction)
{
    const auto seeDensely = [direction](DenseBytes& visible, const DenseBytes& filled) {
        SeeDenselyAlong(visible, filled, direction);
    };
    constexpr std::array<std::int64_t, 2> resolutions{256, 512};
    RegisterForScenes(
        name,
        [=](State& state, const GriddedScene& scene) {
            MeasureVisibility(
                state, scene,
                [&](const VoxelModel<bool>& model) { return VisibilityFromDirection(model, direction, Level, Threshold); },
                seeDensely);
        },
        resolutions);
    RegisterForScenes(
        name + "Baseline", [=](State& state, const GriddedScene& scene) { MeasureDensely(state, scene, seeDensely); },
        resolutions);
}

// Voxel of the dense array, near the scene's lower x side in half its height.
Triple EyeOf(const DenseBytes& filled) { return {filled.size[0] / 16, filled.size[1] / 3, filled.size[2] / 2}; }

// see(model, point) and seeDensely(visible, filled, eye) look from the same place.
template <class See, class SeeDensely> void RegisterPoint(const std::string& name, const See& see, const SeeDensely& seeDensely)
{
    const auto seeFromEye = [=](DenseBytes& visible, const DenseBytes& filled) { seeDensely(visible, filled, EyeOf(filled)); };
    constexpr std::array<std::int64_t, 2> resolutions{256, 512};
    RegisterForScenes(
        name,
        [=](State& state, const GriddedScene& scene) {
            const DenseBytes box(scene.FinestExtents());
            const Triple point = scene.axes.VoxelCenter(Plus(EyeOf(box), box.lower), Level);
            MeasureVisibility(
                state, scene, [&](const VoxelModel<bool>& model) { return see(model, point); }, seeFromEye);
        },
        resolutions);
    RegisterForScenes(
        name + "Baseline", [=](State& state, const GriddedScene& scene) { MeasureDensely(state, scene, seeFromEye); },
        resolutions);
}

void RegisterPoints()
{
    constexpr long long unlimited = 2'800'000'000;
    RegisterPoint(
        "VisibilityFromPoint",
        [](const VoxelModel<bool>& model, const Triple& point) {
            return VisibilityFromPoint(model, point, Level, unlimited, Threshold, false);
        },
        SeeDenselyFrom);
    RegisterPoint(
        "VisibilityCone",
        [](const VoxelModel<bool>& model, const Triple& point) {
            return VisibilityWithinCone(model, point, {0, 1, 0}, ConeAngle, Level, unlimited, Threshold, false);
        },
        [](DenseBytes& visible, const DenseBytes& filled, const Triple& eye) {
            SeeDenselyWithin(visible, filled, eye, IsInCone);
        });
    RegisterPoint(
        "VisibilityPyramid",
        [](const VoxelModel<bool>& model, const Triple& point) {
            return VisibilityWithinPyramid(model, point, CameraDirection, CameraAngles[0], CameraAngles[1], Level, unlimited,
                                           Threshold, false);
        },
        [](DenseBytes& visible, const DenseBytes& filled, const Triple& eye) {
            SeeDenselyWithin(visible, filled, eye, IsInView);
        });
}

const bool AreRegistered = [] {
    RegisterDirection("VisibilityOblique", {3, 2, -5});
    RegisterDirection("VisibilityAlongX", {1, 0, 0});
    RegisterDirection("VisibilityAlongZ", {0, 0, -1});
    RegisterPoints();
    return true;
}();

} // namespace
} // namespace brix::benchmarks
