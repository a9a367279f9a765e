#include "ReferenceOperations.h"

#include "model/ForEachStack.h"
#include "model/StackIterator.h"

#include <functional>

namespace brix::tests {
namespace {

using References = std::vector<const ReferenceModel*>;

// The finest level that both have is copied by index; all others follow from it.
ReferenceModel Rebuild(const ReferenceModel& source, const Extents& newExtents, std::int64_t newFinestLOD)
{
    const ReferenceModel level = source.AtLevel(std::min(source.FinestLOD(), newFinestLOD));
    const ReferenceModel target(newExtents, newFinestLOD, level.VoxelLOD());
    return target.Where([&](const Triple& voxel) { return level.Value(voxel); });
}

// A level of the model that Rebuild gives.
ReferenceModel RebuiltLevel(const ReferenceModel& source, const Extents& newExtents, std::int64_t lod)
{
    return Rebuild(source, newExtents, lod).AtLevel(lod);
}

using Join = Triple (*)(const Triple&, const Triple&);

// The lower and the upper corners of all models at a level, each joined to one.
std::array<Triple, 2> Corners(const References& models, std::int64_t lod, Join joinLower, Join joinUpper)
{
    const Extents first = models.front()->FinestExtentsRef().RescaledCopy(lod);
    std::array corners{first.LowerIndices(), first.UpperIndices()};
    for (const ReferenceModel* model : models) {
        const Extents extents = model->FinestExtentsRef().RescaledCopy(lod);
        corners = {joinLower(corners[0], extents.LowerIndices()), joinUpper(corners[1], extents.UpperIndices())};
    }
    return corners;
}

Extents Bounding(const References& models, std::int64_t lod)
{
    const auto [lower, upper] = Corners(models, lod, Lowest, Highest);
    return Extents(models.front()->AxesRef(), lower, upper, lod);
}

std::optional<Extents> Common(const References& models, std::int64_t lod)
{
    const auto [lower, upper] = Corners(models, lod, Highest, Lowest);
    if (lower[0] > upper[0] || lower[1] > upper[1] || lower[2] > upper[2]) return std::nullopt;
    return Extents(models.front()->AxesRef(), lower, upper, lod);
}

} // namespace

std::int64_t CountFilled(const ReferenceModel& model, std::int64_t lod) { return model.AtLevel(lod).CountFilled(); }
bool IsEmpty(const ReferenceModel& model, std::int64_t lod) { return CountFilled(model, lod) == 0; }
bool IsFull(const ReferenceModel& model, std::int64_t lod)
{
    std::int64_t voxels = 0;
    model.AtLevel(lod).ForEachVoxel([&](const Triple&) { ++voxels; });
    return CountFilled(model, lod) == voxels;
}

ReferenceModel Crop(const ReferenceModel& model, std::int64_t lowerX, std::int64_t upperX, std::int64_t lowerY,
                    std::int64_t upperY, std::int64_t lowerZ, std::int64_t upperZ)
{
    const Extents& extents = model.FinestExtentsRef();
    const Triple lower = Plus(extents.LowerIndices(), {lowerX, lowerY, lowerZ});
    const Triple upper = Minus(extents.UpperIndices(), {upperX, upperY, upperZ});
    return Resize(model, Extents(extents.AxesRef(), lower, upper, model.FinestLOD()));
}

ReferenceModel Enlarge(const ReferenceModel& model, std::int64_t lowerX, std::int64_t upperX, std::int64_t lowerY,
                       std::int64_t upperY, std::int64_t lowerZ, std::int64_t upperZ)
{
    return Crop(model, -lowerX, -upperX, -lowerY, -upperY, -lowerZ, -upperZ);
}

ReferenceModel AutoCrop(const ReferenceModel& model)
{
    const ReferenceModel finest = model.AtLevel(model.FinestLOD());
    const Extents& extents = finest.ExtentsRef();
    Triple lower = extents.UpperIndices();
    Triple upper = extents.LowerIndices();
    finest.ForEachVoxel([&](const Triple& voxel) {
        if (!finest.Value(voxel)) return;
        lower = Lowest(lower, voxel);
        upper = Highest(upper, voxel);
    });
    for (std::size_t i = 0; i < 3 && finest.CountFilled() == 0; ++i) {
        const std::int64_t size = extents.UpperIndices()[i] - extents.LowerIndices()[i];
        lower[i] = extents.LowerIndices()[i] + (size + 1) / 2;
        upper[i] = extents.UpperIndices()[i] - size / 2;
    }
    return Resize(model, Extents(extents.AxesRef(), lower, upper, model.FinestLOD()));
}

ReferenceModel Resize(const ReferenceModel& model, const Extents& newExtents)
{
    return Rebuild(model, newExtents, model.FinestLOD());
}

ReferenceModel Relocate(const ReferenceModel& model, const Axes& newAxes)
{
    const Extents& extents = model.FinestExtentsRef();
    return Resize(model, Extents(newAxes, extents.LowerIndices(), extents.UpperIndices(), model.FinestLOD()));
}

ReferenceModel Refine(const ReferenceModel& model, std::int64_t lod) { return Rebuild(model, model.FinestExtentsRef(), lod); }

ReferenceModel Union(const References& models, std::int64_t lod, bool autoCrop)
{
    ReferenceModel result(Bounding(models, lod), lod, lod);
    for (const ReferenceModel* model : models) {
        const ReferenceModel added = RebuiltLevel(*model, model->FinestExtentsRef(), lod);
        result = result.Where([&](const Triple& voxel) { return result.Value(voxel) || added.Value(voxel); });
    }
    return autoCrop ? AutoCrop(result) : result;
}

ReferenceModel Intersect(const References& models, std::int64_t lod, bool autoCrop)
{
    const std::optional<Extents> common = Common(models, lod);
    ReferenceModel result(common.value_or(Bounding(models, lod)), lod, lod);
    if (common) {
        result = Invert(result);
        for (const ReferenceModel* model : models) {
            const ReferenceModel kept = RebuiltLevel(*model, *common, lod);
            result = result.Where([&](const Triple& voxel) { return result.Value(voxel) && kept.Value(voxel); });
        }
    }
    return autoCrop ? AutoCrop(result) : Resize(result, Bounding(models, lod));
}

ReferenceModel Subtract(const ReferenceModel& model, const ReferenceModel& subtrahend, std::int64_t lod, bool autoCrop)
{
    ReferenceModel result = (model.FinestLOD() < lod ? Refine(model, lod) : model).AtLevel(lod);
    if (const std::optional<Extents> common = Common({&model, &subtrahend}, lod)) {
        const ReferenceModel removed = RebuiltLevel(subtrahend, *common, lod);
        result = result.Where([&](const Triple& voxel) { return result.Value(voxel) && !removed.Value(voxel); });
    }
    return autoCrop ? AutoCrop(result) : Resize(result, Bounding({&model, &subtrahend}, lod));
}

ReferenceModel Invert(const ReferenceModel& model)
{
    const ReferenceModel finest = model.AtLevel(model.FinestLOD());
    return finest.Where([&](const Triple& voxel) { return !finest.Value(voxel); });
}

namespace {

// Whether a voxel is filled after a pass; `before` is a copy from before it.
using PassRule = std::function<bool(const ReferenceModel& before, const Triple& voxel)>;

// A margin is three pairs of voxels on the lower and upper sides: x, y, z.
using Margin = std::array<std::int64_t, 6>;

ReferenceModel Grow(const ReferenceModel& source, const std::vector<PassRule>& passes, const Margin& m,
                    const ReferenceGuide& guide, bool autoAdjust)
{
    const std::int64_t lod = source.FinestLOD();
    ReferenceModel working = autoAdjust ? Enlarge(source, m[0], m[1], m[2], m[3], m[4], m[5]) : source.AtLevel(lod);
    ReferenceModel barrier = working.Where([](const Triple&) { return false; });
    if (guide) barrier = RebuiltLevel(*guide, working.ExtentsRef(), lod);
    working = working.Where([&](const Triple& voxel) { return working.Value(voxel) && !barrier.Value(voxel); });
    for (const PassRule& isFilled : passes) {
        working = working.Where([&](const Triple& voxel) { return isFilled(working, voxel) && !barrier.Value(voxel); });
    }
    const ReferenceModel kept = Intersect({&source, &barrier}, lod, false);
    working = Union({&working, &kept}, lod, false);
    return autoAdjust ? AutoCrop(working) : working;
}

ReferenceModel Shrink(const ReferenceModel& source, const std::vector<PassRule>& passes, const Margin& m,
                      const ReferenceGuide& guide, bool autoAdjust)
{
    const std::int64_t lod = source.FinestLOD();
    ReferenceModel working = source.AtLevel(lod);
    if (guide) {
        working = Enlarge(source, m[0], m[1], m[2], m[3], m[4], m[5]);
        const ReferenceModel filled = RebuiltLevel(*guide, working.ExtentsRef(), lod);
        working = Union({&working, &filled}, lod, false);
        for (const PassRule& isFilled : passes) {
            working = working.Where([&](const Triple& voxel) { return isFilled(working, voxel) || filled.Value(voxel); });
        }
        working = Crop(working, m[0], m[1], m[2], m[3], m[4], m[5]);
        working = Intersect({&working, &source}, lod, false);
    } else {
        for (const PassRule& isFilled : passes) {
            working = working.Where([&](const Triple& voxel) { return isFilled(working, voxel); });
        }
    }
    return autoAdjust ? AutoCrop(working) : working;
}

Margin MarginAlong(Axis axis, std::int64_t lower, std::int64_t upper)
{
    Margin margin{};
    margin[2 * static_cast<std::size_t>(axis)] = lower;
    margin[2 * static_cast<std::size_t>(axis) + 1] = upper;
    return margin;
}

// First all passes that look at one neighbour, then all that look at the opposite one.
std::vector<PassRule> PassesAlong(Axis axis, int lowerOffset, int lowerLooksTo, int upperOffset, const auto& rule)
{
    Triple step{};
    step[static_cast<std::size_t>(axis)] = lowerLooksTo;
    const auto lower = [=](const ReferenceModel& before, const Triple& voxel) {
        return rule(before.Value(voxel), before.Value(Plus(voxel, step)));
    };
    const auto upper = [=](const ReferenceModel& before, const Triple& voxel) {
        return rule(before.Value(voxel), before.Value(Minus(voxel, step)));
    };
    std::vector<PassRule> passes(static_cast<std::size_t>(lowerOffset), lower);
    passes.insert(passes.end(), static_cast<std::size_t>(upperOffset), upper);
    return passes;
}

PassRule GrowWhere(int horizontal, int vertical)
{
    return [=](const ReferenceModel& before, const Triple& voxel) {
        return before.Value(voxel) || (CountBeside(before, voxel) >= horizontal && CountStacked(before, voxel) >= vertical);
    };
}

PassRule ShrinkWhere(int horizontal, int vertical)
{
    return [=](const ReferenceModel& before, const Triple& voxel) {
        const bool goes = 4 - CountBeside(before, voxel) >= horizontal && 2 - CountStacked(before, voxel) >= vertical;
        return before.Value(voxel) && !goes;
    };
}

// From the last pass to the first. Every second voxel of the diameter is a step to all sides. A pass that fills corners stands
// behind the last step (even diameters) or before it (odd ones), and before each further pair of steps that has at least two in
// front of it.
std::vector<int> DiscSteps(int diameter)
{
    std::vector<int> backwards;
    int left = (diameter - 1) / 2;
    const auto step = [&](int count) {
        for (; count > 0 && left > 0; --count, --left) backwards.push_back(1);
    };
    const bool isEven = diameter % 2 == 0;
    if (isEven) backwards.push_back(2);
    step(1);
    if (!isEven && left > 0) backwards.push_back(2);
    while (left >= 4) {
        step(2);
        backwards.push_back(2);
    }
    step(left);
    return {backwards.rbegin(), backwards.rend()};
}

std::vector<PassRule> DiscPasses(int diameter, PassRule (*rule)(int, int))
{
    std::vector<PassRule> passes;
    for (const int least : DiscSteps(diameter)) passes.push_back(rule(least, 0));
    return passes;
}

} // namespace

int CountBeside(const ReferenceModel& model, const Triple& voxel)
{
    const auto [x, y, z] = voxel;
    return model.Value({x - 1, y, z}) + model.Value({x + 1, y, z}) + model.Value({x, y - 1, z}) + model.Value({x, y + 1, z});
}

int CountStacked(const ReferenceModel& model, const Triple& voxel)
{
    return model.Value(Minus(voxel, {0, 0, 1})) + model.Value(Plus(voxel, {0, 0, 1}));
}

ReferenceModel ExpandAlong(Axis axis, const ReferenceModel& model, int lowerOffset, int upperOffset, const ReferenceGuide& guide,
                           bool autoAdjustExtents)
{
    const auto passes = PassesAlong(axis, lowerOffset, 1, upperOffset, std::logical_or<bool>());
    return Grow(model, passes, MarginAlong(axis, lowerOffset, upperOffset), guide, autoAdjustExtents);
}

ReferenceModel ReduceAlong(Axis axis, const ReferenceModel& model, int lowerOffset, int upperOffset, const ReferenceGuide& guide,
                           bool autoAdjustExtents)
{
    const auto passes = PassesAlong(axis, lowerOffset, -1, upperOffset, std::logical_and<bool>());
    return Shrink(model, passes, MarginAlong(axis, 1, 1), guide, autoAdjustExtents);
}

ReferenceModel ExpandByOneVoxel(const ReferenceModel& model, int horizontalAdjacency, int verticalAdjacency,
                                const ReferenceGuide& guide, bool autoAdjustExtents)
{
    return Grow(model, {GrowWhere(horizontalAdjacency, verticalAdjacency)}, {1, 1, 1, 1, 1, 1}, guide, autoAdjustExtents);
}

ReferenceModel ReduceByOneVoxel(const ReferenceModel& model, int horizontalAdjacency, int verticalAdjacency,
                                const ReferenceGuide& guide, bool autoAdjustExtents)
{
    return Shrink(model, {ShrinkWhere(horizontalAdjacency, verticalAdjacency)}, {1, 1, 1, 1, 1, 1}, guide, autoAdjustExtents);
}

ReferenceModel ExpandHorizontally(const ReferenceModel& model, int diameterOffset, const ReferenceGuide& guide,
                                  bool autoAdjustExtents)
{
    const std::int64_t r = (diameterOffset - 1) / 2;
    return Grow(model, DiscPasses(diameterOffset, GrowWhere), {r, r, r, r, 0, 0}, guide, autoAdjustExtents);
}

ReferenceModel ReduceHorizontally(const ReferenceModel& model, int diameterOffset, const ReferenceGuide& guide,
                                  bool autoAdjustExtents)
{
    return Shrink(model, DiscPasses(diameterOffset, ShrinkWhere), {1, 1, 1, 1, 0, 0}, guide, autoAdjustExtents);
}

// Whether all stored stacks of a model stand in another one, too.
bool HasStacksOf(const VoxelModel<bool>& model, const VoxelModel<bool>& other, std::int64_t lod)
{
    return AllStoredStacks(other, lod, [&](const VoxelStore<bool>& store, const StackIndices& ij) {
        return FindStack(model, StackOfVoxel(store.LowerIndices(ij)), lod) == store.VoxelStackRef(ij);
    });
}

std::string Differences(const VoxelModel<bool>& actual, const VoxelModel<bool>& expected)
{
    if (!(actual.AxesRef() == expected.AxesRef()) || actual.FinestLOD() != expected.FinestLOD()) return "frame or level differ";
    for (std::int64_t lod = expected.FinestLOD(); lod >= 0; --lod) {
        const Extents& extents = expected.ExtentsRef(lod);
        bool isEqual = extents.LowerIndices() == actual.ExtentsRef(lod).LowerIndices() &&
                       extents.UpperIndices() == actual.ExtentsRef(lod).UpperIndices();
        isEqual = isEqual && HasStacksOf(actual, expected, lod) && HasStacksOf(expected, actual, lod);
        if (!isEqual) return "differ: " + Differences(ReferenceModel(actual, lod), ReferenceModel(expected, lod));
    }
    return {};
}

std::string Changes(const VoxelModel<bool>& model, const ReferenceModel& original)
{
    return Differences(ReferenceModel(model, model.FinestLOD()), original.AtLevel(original.FinestLOD()));
}

} // namespace brix::tests
