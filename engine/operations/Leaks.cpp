#include "Leaks.h"

#include "../frame/Require.h"
#include "../model/VoxelIterator.h"
#include "../model/VoxelPainter.h"
#include "AutoSplit.h"
#include "BasicOperations.h"
#include "SolidOperations.h"
#include "SurfaceOperations.h"
#include "Wavefront.h"

namespace brix {
namespace {

bool IsFilledAt(const VoxelModel<bool>& model, const Triple& voxel)
{
    const ConstVoxelIterator found = model.FindVoxel(voxel, model.FinestLOD());
    return found.IsValid() && found.Value();
}

// Cubes that go a way, by their lowest voxels: a model each for those that can move to each other.
class CubesOnWay
{
public:
    CubesOnWay(const VoxelModel<bool>& model, const std::vector<Triple>& way)
        : way_(way),
          lod_(model.FinestLOD()),
          taken_(Resize(model, Surroundings(model, way))),
          near_(Painted(way, taken_.ExtentsRef(lod_)))
    {
        taken_.MakeLevels(OtherLevels::WhenAskedFor); // and so with all that comes of it: nobody asks
        near_.MakeLevels(OtherLevels::WhenAskedFor);
    }

    std::optional<Gap> FindGap()
    {
        std::vector<VoxelModel<bool>> passing{near_};
        for (std::int64_t width = 2; width <= MostGapWidth; ++width) {
            std::vector<VoxelModel<bool>> started = StartedCubes(width);
            std::vector<VoxelModel<bool>> arrived;
            for (const VoxelModel<bool>& cubes : started)
                if (!CubesWith(way_.back(), cubes, width).empty()) arrived.push_back(cubes);
            if (arrived.empty()) return Gap{CentreAt(FirstNotReached(started, width), passing, width - 1), width - 1};
            passing = std::move(arrived);
        }
        return std::nullopt;
    }

private:
    // Room for the widest cube around the way, as far as the index space goes.
    static Extents Surroundings(const VoxelModel<bool>& model, const std::vector<Triple>& way)
    {
        const std::int64_t lod = model.FinestLOD();
        const std::int64_t horizontal = MaxHorizontalExtent(lod);
        const Triple most{horizontal, horizontal, MaxVerticalExtent(model.AxesRef().VerticalLOD())};
        constexpr Triple margin{MostGapWidth, MostGapWidth, MostGapWidth};
        Triple lower = way.front();
        Triple upper = way.front();
        for (const Triple& voxel : way) {
            lower = Lowest(lower, voxel);
            upper = Highest(upper, voxel);
        }
        lower = Highest(Minus(lower, margin), Minus({}, most));
        upper = Lowest(Plus(upper, margin), Minus(most, {1, 1, 1}));
        return Extents(model.AxesRef(), lower, upper, lod);
    }

    static VoxelModel<bool> Painted(const std::vector<Triple>& way, const Extents& extents)
    {
        VoxelPainter painter(extents);
        for (const Triple& voxel : way) painter.Fill(voxel);
        return painter.Take();
    }

    // Cubes that are a voxel wider than the last ones, in empty voxels and with some voxel of the way inside: those that can move
    // to where they hold the way's first voxel.
    std::vector<VoxelModel<bool>> StartedCubes(std::int64_t width)
    {
        for (const auto& expand : {ExpandAlongX, ExpandAlongY, ExpandAlongZ}) {
            taken_ = expand(taken_, 1, 0, {}, false);
            near_ = expand(near_, 1, 0, {}, false);
        }
        std::vector<VoxelModel<bool>> cubes = AutoSplit(Subtract(near_, taken_, lod_, false));
        std::erase_if(cubes, [&](const VoxelModel<bool>& region) { return CubesWith(way_.front(), region, width).empty(); });
        return cubes;
    }

    static std::vector<Triple> CubesWith(const Triple& voxel, const VoxelModel<bool>& cubes, std::int64_t width)
    {
        std::vector<Triple> found;
        ForEachTriple(Minus(voxel, {width - 1, width - 1, width - 1}), voxel, [&](const Triple& cube) {
            if (IsFilledAt(cubes, cube)) found.push_back(cube);
        });
        return found;
    }

    Triple FirstNotReached(const std::vector<VoxelModel<bool>>& started, std::int64_t width) const
    {
        const auto isReached = [&](const Triple& voxel) {
            return std::any_of(started.begin(), started.end(),
                               [&](const VoxelModel<bool>& cubes) { return !CubesWith(voxel, cubes, width).empty(); });
        };
        return *std::find_if_not(way_.begin(), way_.end(), isReached);
    }

    // The middle of the cubes that hold a voxel of the way, or of the one that is nearest to it.
    std::array<double, 3> CentreAt(const Triple& voxel, const std::vector<VoxelModel<bool>>& passing, std::int64_t width) const
    {
        std::vector<Triple> cubes;
        for (const VoxelModel<bool>& region : passing) {
            const std::vector<Triple> some = CubesWith(voxel, region, width);
            cubes.insert(cubes.end(), some.begin(), some.end());
        }
        Triple sum{};
        for (const Triple& cube : cubes) sum = Plus(sum, cube);
        const auto count = std::ssize(cubes);
        const auto distance = [&](const Triple& cube) {
            std::int64_t all = 0;
            for (std::size_t i = 0; i < 3; ++i) all += std::abs(cube[i] * count - sum[i]);
            return all;
        };
        const Triple cube = *std::min_element(cubes.begin(), cubes.end(),
                                              [&](const Triple& a, const Triple& b) { return distance(a) < distance(b); });
        const Axes& axes = near_.AxesRef();
        const Triple lower = axes.VoxelCorner(cube, lod_);
        const Triple upper = axes.VoxelCorner(Plus(cube, {width, width, width}), lod_);
        const Triple doubled = Plus(lower, upper);
        return axes.ToWorldCoordinates({doubled[0] / 2, doubled[1] / 2, doubled[2] / 2});
    }

    const std::vector<Triple>& way_;
    std::int64_t lod_;
    VoxelModel<bool> taken_; // where a cube would hold a filled voxel
    VoxelModel<bool> near_;  // where it holds a voxel of the way
};

std::vector<std::array<double, 3>> PolylineOf(const std::vector<Triple>& way, const Axes& axes, std::int64_t lod)
{
    std::vector<std::array<double, 3>> points;
    for (std::size_t i = 0; i < way.size(); ++i) {
        const bool isStraight = i > 0 && i + 1 < way.size() && Minus(way[i], way[i - 1]) == Minus(way[i + 1], way[i]);
        if (!isStraight) points.push_back(axes.ToWorldCoordinates(axes.VoxelCenter(way[i], lod)));
    }
    return points;
}

} // namespace

Triple LeakStart(const VoxelModel<bool>& voxelModel, const std::array<std::int64_t, 3>& pointCoords)
{
    const std::int64_t lod = voxelModel.FinestLOD();
    const Triple voxel = voxelModel.AxesRef().ContainingVoxel(pointCoords, lod);
    Require(voxelModel.ExtentsRef(lod).ContainsVoxel(voxel),
            "The point from which a leak is searched must lie inside the extents.");
    Require(!IsFilledAt(voxelModel, voxel), "The point from which a leak is searched must lie in an empty voxel.");
    return voxel;
}

std::optional<Leak> FindLeak(const VoxelModel<bool>& voxelModel, const std::array<std::int64_t, 3>& pointCoords)
{
    const std::vector<Triple> way = Wavefront(voxelModel).WayOut(LeakStart(voxelModel, pointCoords));
    if (way.empty()) return std::nullopt;
    return Leak{way, PolylineOf(way, voxelModel.AxesRef(), voxelModel.FinestLOD()), CubesOnWay(voxelModel, way).FindGap()};
}

} // namespace brix
