#include "SolidOperations.h"

#include "../frame/Require.h"
#include "../model/ChangeWhole.h"
#include "../model/ChunkPart.h"
#include "../model/CombineStacks.h"
#include "../model/ForEachStack.h"
#include "../model/InstructionSet.h"
#include "../model/PropagateLevel.h"
#include "BasicOperations.h"
#include "MergedExtents.h"
#include "RebuildModel.h"

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

namespace brix {
namespace {

// Chunks: those that one of two models stores, or the first, or the second, or both; or any at all.
enum class Where
{
    AnyStored,
    FirstStored,
    SecondStored,
    BothStored,
    Anywhere
};

// The combinations of two sets. The result may hold something `where` they say, and differ from the first in chunks
// `whereChanged` says. Same(a, b) gives the stack that is the result without a look at plates, if one is.
struct InAny
{
    static constexpr Where where = Where::AnyStored;
    static constexpr Where whereChanged = Where::SecondStored;
    static const Stack* Same(const Stack& a, const Stack& b) { return b.IsUnallocated() ? &a : a.IsUnallocated() ? &b : nullptr; }
    Plate operator()(const Plate& a, const Plate& b) const { return a | b; }
};

struct InBoth
{
    static constexpr Where where = Where::FirstStored;
    static constexpr Where whereChanged = Where::FirstStored;
    static const Stack* Same(const Stack& a, const Stack& b)
    {
        return a.IsUnallocated() ? &a : b.IsUnallocated() || &a == &b ? &b : nullptr;
    }
    Plate operator()(const Plate& a, const Plate& b) const { return a & b; }
};

struct InFirstOnly
{
    static constexpr Where where = Where::FirstStored;
    static constexpr Where whereChanged = Where::BothStored;
    static const Stack* Same(const Stack& a, const Stack& b) { return a.IsUnallocated() || b.IsUnallocated() ? &a : nullptr; }
    Plate operator()(const Plate& a, const Plate& b) const { return AndNot(a, b); }
};

struct NotInFirst
{
    static constexpr Where where = Where::Anywhere;
    static const Stack* Same(const Stack&, const Stack&) { return nullptr; }
    Plate operator()(const Plate& a, const Plate&) const { return ~a; }
};

// What a stack becomes, with everything outside a box emptied.
template <class Rule> void CombineInsideBox(Stack& result, const Rule& rule, const Stack& a, const Stack& b, const BoxStack& box)
{
    if (const Stack* const same = rule.Same(a, b))
        CopyInsideBox(result, *same, box);
    else
        CombineStacks(
            result, [&](const Plate& x, const Plate& y, const Plate& inside) { return inside & rule(x, y); }, a, b, box);
}

// A chunk's store, if there is such a model and it stores the chunk.
const Store* StoreOf(const VoxelModel<bool>* model, const Triple& chunk, std::int64_t lod)
{
    const VoxelChunk<bool>* const found = model != nullptr ? model->FindChunk(chunk) : nullptr;
    return found != nullptr ? &found->VoxelStoreRef(lod) : nullptr;
}

// What a rule makes of two stores throughout, if that follows without a look at their stacks.
template <class Rule> std::optional<bool> UniformResult(const Rule& rule, std::optional<bool> a, std::optional<bool> b)
{
    std::array<bool, 2> canBe{};
    for (const bool x : {false, true}) {
        for (const bool y : {false, true}) {
            const auto plateOf = [](bool value) { return value ? FilledPlate() : Plate{}; };
            if (a.value_or(x) == x && b.value_or(y) == y) canBe[IsFull(rule(plateOf(x), plateOf(y))) ? 1 : 0] = true;
        }
    }
    if (canBe[0] == canBe[1]) return std::nullopt;
    return canBe[1];
}

// Combines two chunks' stores if the result follows without a look at their stacks.
template <class Rule>
bool CombineUniform(Store& to, const Rule& rule, const Store* a, const Store* b, const std::optional<Extents>& clip)
{
    const ChunkPart whole(to, to.ExtentsRef());
    if (clip && !ChunkPart(to, *clip).Covers(whole)) return false;
    const std::optional<bool> value = UniformResult(rule, UniformValue(a, whole), UniformValue(b, whole));
    if (value) to.MakeUniform(*value);
    return value.has_value();
}

// The chunks of `result` that `where` says, of one or two models.
std::vector<Triple> ChunksOf(Where where, const VoxelModel<bool>& result, const VoxelModel<bool>* first,
                             const VoxelModel<bool>* second)
{
    std::vector<Triple> chunks;
    const auto add = [&](const Triple& chunk) {
        if (result.IsChunkValid(chunk)) chunks.push_back(chunk);
    };
    const auto addStored = [&](const VoxelModel<bool>* model, const auto& isWanted) {
        if (model == nullptr) return;
        model->ForEachChunk([&](const Triple& chunk, const auto&) {
            if (isWanted(chunk)) add(chunk);
        });
    };
    const auto all = [](const Triple&) { return true; };
    const auto isStored = [](const VoxelModel<bool>* model) {
        return [model](const Triple& chunk) { return model != nullptr && model->FindChunk(chunk) != nullptr; };
    };
    switch (where) {
    case Where::AnyStored:
        addStored(first, all);
        addStored(second, std::not_fn(isStored(first)));
        break;
    case Where::FirstStored:
        addStored(first, all);
        break;
    case Where::SecondStored:
        addStored(second, all);
        break;
    case Where::BothStored:
        addStored(first, isStored(second));
        break;
    case Where::Anywhere:
        chunks.reserve(result.ChunkCount()); // runs out of memory at once where the whole would
        ForEachTriple(result.LowerChunkIndices(), result.UpperChunkIndices(), add);
        break;
    }
    return chunks;
}

// Makes chunks of a level of `result`, which may be one of the two, what a rule makes of two models at that level; the other
// levels have to follow from it afterwards. A missing model is empty. With a clip, which lies inside the result's extents,
// everything outside the clip is emptied.
template <class Rule>
void Combine(VoxelModel<bool>& result, std::int64_t lod, const Rule& rule, const VoxelModel<bool>* first,
             const VoxelModel<bool>* second, const std::optional<Extents>& clip, const std::vector<Triple>& chunks)
{
    WatchedLoop loop(chunks.size());
    const auto combineChunk = [&](const Triple& chunk) {
        loop.Step();
        const Store* const a = StoreOf(first, chunk, lod);
        const Store* const b = StoreOf(second, chunk, lod);
        Store& combined = result.ChunkRef(chunk).StoreToRewrite(lod);
        if (CombineUniform(combined, rule, a, b, clip)) return;
        ForEachStackOfStore(combined, [&](Store& to, const StackIndices& ij) {
            Stack& stack = to.VoxelStackRef(ij);
            const Stack& x = a != nullptr ? a->VoxelStackRef(ij) : EmptyStack;
            const Stack& y = b != nullptr ? b->VoxelStackRef(ij) : EmptyStack;
            const OffsetBox inClip = clip ? PartInside(*clip, to.LowerIndices(ij)) : OffsetBox{};
            if (!inClip.IsWholeStack()) {
                CombineInsideBox(stack, rule, x, y, BoxStack(inClip));
            } else if (const Stack* const same = rule.Same(x, y)) {
                stack = *same;
                if (clip) stack.Compress(); // a copy of what a host may have left with equal layers
            } else {
                CombineStacks(stack, rule, x, y);
            }
        });
    };
    RunWith(FastestInstructionSet(), [&] { std::for_each(chunks.begin(), chunks.end(), combineChunk); });
}

template <class Rule>
void Combine(VoxelModel<bool>& result, std::int64_t lod, const Rule& rule, const VoxelModel<bool>* first,
             const VoxelModel<bool>* second, const std::optional<Extents>& clip)
{
    Combine(result, lod, rule, first, second, clip, ChunksOf(Rule::where, result, first, second));
}

// A model that holds a level: the given one or, where that is coarser, its refinement within extents.
class ModelAtLevel
{
public:
    ModelAtLevel(const VoxelModel<bool>& model, const Extents& within, std::int64_t lod) : model_(&model)
    {
        if (model.FinestLOD() >= lod) return;
        refined_.emplace(RebuildModel(model, within, lod));
        model_ = &*refined_;
    }
    ModelAtLevel(const ModelAtLevel&) = delete;
    ModelAtLevel& operator=(const ModelAtLevel&) = delete;

    const VoxelModel<bool>* Pointer() const { return model_; }

private:
    const VoxelModel<bool>* model_;
    std::optional<VoxelModel<bool>> refined_;
};

// Combines all models of a list, a single one with itself: the first two at once, as their result needs memory but once. Coarser
// models are refined within(model).
template <class Rule, class Within>
void CombineAll(VoxelModel<bool>& result, const Rule& rule, const ModelPointers& models, const Within& within,
                const std::optional<Extents>& clip)
{
    const std::int64_t lod = result.FinestLOD();
    {
        const ModelAtLevel first(*models[0], within(*models[0]), lod);
        if (models.size() == 1) return Combine(result, lod, rule, first.Pointer(), first.Pointer(), clip);
        const ModelAtLevel second(*models[1], within(*models[1]), lod);
        Combine(result, lod, rule, first.Pointer(), second.Pointer(), clip);
    }
    WatchedLoop loop(models.size() - 2);
    for (std::size_t i = 2; i < models.size(); ++i) {
        Combine(result, lod, rule, &result, ModelAtLevel(*models[i], within(*models[i]), lod).Pointer(), clip);
        loop.Step();
    }
}

// Changes a model at its finest level, where it stands if its extents hold the other one. Only a union needs all of a coarser
// one refined.
template <class Rule> void CombineInto(VoxelModel<bool>& model, const Rule& rule, const VoxelModel<bool>& other)
{
    RequireSameAxes({&model, &other});
    const std::int64_t lod = model.FinestLOD();
    const std::optional<Extents> common = CommonExtents({&model, &other}, lod);
    const bool isAllNeeded = Rule::where == Where::AnyStored || !common;
    const ModelAtLevel second(other, isAllNeeded ? other.ExtentsRef(other.FinestLOD()) : *common, lod);
    const Extents bounding = BoundingExtents({&model, &other}, lod);
    if (!(model.ExtentsRef(lod) == bounding)) model = RebuildModel(std::move(model), bounding, lod);
    const std::vector<Triple> changed = ChunksOf(Rule::whereChanged, model, &model, second.Pointer());
    Combine(model, lod, rule, &model, second.Pointer(), std::nullopt, changed);
    model.FinishLevels(lod, changed);
}

template <class Rule> void CombineInPlace(VoxelModel<bool>& model, const Rule& rule, const VoxelModel<bool>& other)
{
    ChangeWhole(model, [&](VoxelModel<bool>& changed) { CombineInto(changed, rule, other); });
}

VoxelModel<bool> CroppedOrPropagated(VoxelModel<bool>&& model, bool autoCrop)
{
    if (autoCrop) return AutoCrop(std::move(model));
    model.FinishLevels(model.FinestLOD());
    return std::move(model);
}

} // namespace

VoxelModel<bool> Union(const ModelPointers& models, std::int64_t lod, bool autoCrop)
{
    Require(!models.empty(), "At least one voxel model is required for voxel model union.");
    RequireLevel("The level of detail for voxel model union", lod);
    RequireSameAxes(models);

    VoxelModel<bool> result(BoundingExtents(models, lod), lod, models[0]->WhenLevelsAreMade());
    const auto ownExtents = [](const VoxelModel<bool>& model) { return model.ExtentsRef(model.FinestLOD()); };
    CombineAll(result, InAny(), models, ownExtents, std::nullopt);
    return CroppedOrPropagated(std::move(result), autoCrop);
}

VoxelModel<bool> Intersect(const ModelPointers& models, std::int64_t lod, bool autoCrop)
{
    Require(!models.empty(), "At least one voxel model is required for voxel model intersect.");
    RequireLevel("The level of detail for voxel model intersect", lod);
    RequireSameAxes(models);

    const Extents bounding = BoundingExtents(models, lod);
    const std::optional<Extents> common = CommonExtents(models, lod);
    VoxelModel<bool> result(common && autoCrop ? *common : bounding, lod, models[0]->WhenLevelsAreMade());
    const auto commonExtents = [&](const VoxelModel<bool>&) { return *common; };
    if (common) CombineAll(result, InBoth(), models, commonExtents, common);
    return CroppedOrPropagated(std::move(result), autoCrop);
}

VoxelModel<bool> Subtract(const VoxelModel<bool>& model, const VoxelModel<bool>& subtrahend, std::int64_t lod, bool autoCrop)
{
    RequireLevel("The level of detail for voxel model subtraction", lod);
    RequireSameAxes({&model, &subtrahend});

    const Extents bounding = BoundingExtents({&model, &subtrahend}, lod);
    const std::optional<Extents> common = CommonExtents({&model, &subtrahend}, lod);
    std::optional<ModelAtLevel> removed;
    if (common) removed.emplace(subtrahend, *common, lod);
    const VoxelModel<bool>* const removedModel = removed ? removed->Pointer() : nullptr;

    if (model.FinestLOD() > lod) {
        VoxelModel<bool> result = model;
        Combine(result, lod, InFirstOnly(), &result, removedModel, std::nullopt);
        PropagateLevel(result, lod); // the coarser levels follow once more when the result gets its extents
        return autoCrop ? AutoCrop(std::move(result)) : Resize(std::move(result), bounding);
    }
    const ModelAtLevel reduced(model, model.ExtentsRef(model.FinestLOD()), lod);
    const Extents& extents = reduced.Pointer()->ExtentsRef(lod);
    VoxelModel<bool> result(autoCrop ? extents : bounding, lod, model.WhenLevelsAreMade());
    Combine(result, lod, InFirstOnly(), reduced.Pointer(), removedModel, extents);
    return CroppedOrPropagated(std::move(result), autoCrop);
}

void UnionInPlace(VoxelModel<bool>& model, const VoxelModel<bool>& other) { CombineInPlace(model, InAny(), other); }
void IntersectInPlace(VoxelModel<bool>& model, const VoxelModel<bool>& other) { CombineInPlace(model, InBoth(), other); }
void SubtractInPlace(VoxelModel<bool>& model, const VoxelModel<bool>& other) { CombineInPlace(model, InFirstOnly(), other); }

VoxelModel<bool> Invert(const VoxelModel<bool>& model)
{
    const std::int64_t lod = model.FinestLOD();
    VoxelModel<bool> result(model.ExtentsRef(lod), lod, model.WhenLevelsAreMade());
    Combine(result, lod, NotInFirst(), &model, nullptr, model.ExtentsRef(lod));
    result.FinishLevels(lod);
    return result;
}

} // namespace brix
