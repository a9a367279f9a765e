#include "DensityMap.h"

#include "../frame/Require.h"
#include "../model/ChunkPart.h"
#include "../model/CombineStacks.h"
#include "../model/ForEachStack.h"
#include "../model/InstructionSet.h"
#include "BasicOperations.h"
#include "MergedExtents.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <string>

namespace brix {
namespace {

// The voxels of a plate by their sum of weights, rising from class to class; every voxel is in one class.
class PlateSums
{
public:
    void Restart() { classes_.assign(1, {FilledPlate(), 0.0}); }

    // Adds a weight where a plate is filled. Both parts of the classes stay in rising order, so that they are merged as they are.
    void Add(const Plate& plate, double weight)
    {
        if (IsEmpty(plate)) return;
        added_.clear();
        kept_.clear();
        for (const Class& old : classes_) {
            Append(added_, {old.voxels & plate, old.sum + weight});
            Append(kept_, {AndNot(old.voxels, plate), old.sum});
        }
        Merge();
    }

    // Where the sum is at least a threshold. A threshold of 0 or below is reached everywhere, also where negative weights add up
    // to less.
    Plate AtLeast(double threshold) const
    {
        if (threshold <= 0) return FilledPlate();
        Plate result;
        for (const Class& voxels : classes_) {
            if (voxels.sum >= threshold) result = result | voxels.voxels;
        }
        return result;
    }

private:
    struct Class
    {
        Plate voxels;
        double sum;
    };

    // Adds a class that is not lower than the last one, or widens that one.
    static void Append(std::vector<Class>& classes, const Class& next)
    {
        if (IsEmpty(next.voxels)) return;
        if (!classes.empty() && classes.back().sum == next.sum)
            classes.back().voxels = classes.back().voxels | next.voxels;
        else
            classes.push_back(next);
    }

    void Merge()
    {
        classes_.clear();
        auto kept = kept_.begin();
        for (const Class& added : added_) {
            while (kept != kept_.end() && kept->sum < added.sum) Append(classes_, *kept++);
            Append(classes_, added);
        }
        while (kept != kept_.end()) Append(classes_, *kept++);
    }

    std::vector<Class> classes_;
    std::vector<Class> added_;
    std::vector<Class> kept_;
};

// The stacks of all models at one place that are not empty, with their weights, in the order of the models.
class WeightedStacks
{
public:
    void Clear() { stacks_.clear(); }
    void Add(const Stack& stack, double weight) { stacks_.push_back({LayerCursor(stack), weight}); }

    // Writes what reaches each threshold to results[i].
    void Write(const std::vector<double>& thresholds, std::vector<Stack>& results)
    {
        builders_.clear();
        builders_.resize(thresholds.size());
        HeightSet starts = 1;
        for (const Weighted& stack : stacks_) starts |= stack.layers.Starts();
        for (; starts != 0; starts &= starts - 1) {
            const std::int64_t z = std::countr_zero(starts);
            sums_.Restart();
            for (Weighted& stack : stacks_) {
                stack.layers.MoveTo(z);
                sums_.Add(stack.layers.PlateRef(), stack.weight);
            }
            for (std::size_t i = 0; i < thresholds.size(); ++i) builders_[i].Append(z, sums_.AtLeast(thresholds[i]));
        }
        for (std::size_t i = 0; i < thresholds.size(); ++i) builders_[i].WriteTo(results[i]);
    }

private:
    struct Weighted
    {
        LayerCursor layers;
        double weight;
    };

    std::vector<Weighted> stacks_;
    std::vector<StackBuilder> builders_; // by threshold
    PlateSums sums_;
};

void RequireNumbers(const std::vector<double>& values, const std::string& quantity)
{
    for (const double value : values) {
        Require(!std::isnan(value), (quantity + " for a density map must be a number. The value encountered was NaN.").c_str());
    }
}

void RequireDensityArguments(const ModelPointers& models, const std::vector<double>& weights,
                             const std::vector<double>& thresholds, std::int64_t lod)
{
    Require(!models.empty(), "At least one voxel model is required for a density map.");
    Require(weights.size() == models.size(),
            ("The number of weights for a density map must be equal to the number of voxel models. The number of weights "
             "encountered was " +
             std::to_string(weights.size()) + ". The number of voxel models encountered was " + std::to_string(models.size()) +
             ".")
                .c_str());
    Require(!thresholds.empty(), "At least one level is required for a density map.");
    RequireNumbers(weights, "A weight");
    RequireNumbers(thresholds, "A level");
    RequireLevel("The level of detail for a density map", lod);
    RequireSameAxes(models);
}

// The models with those replaced that do not hold a level; `refined` owns what replaces them.
ModelPointers AtLevel(const ModelPointers& models, std::int64_t lod, std::deque<VoxelModel<bool>>& refined)
{
    ModelPointers result;
    for (const VoxelModel<bool>* model : models) {
        result.push_back(model->FinestLOD() >= lod ? model : &refined.emplace_back(Refine(*model, lod)));
    }
    return result;
}

// Makes a chunk of all results full or empty at once, where no model has more than one value in it.
bool WriteUniformChunk(std::vector<VoxelModel<bool>>& results, const Triple& chunk, const ModelPointers& models,
                       const std::vector<double>& weights, const std::vector<double>& thresholds, WeightedStacks& stacks)
{
    const std::int64_t lod = results.front().FinestLOD();
    const Store& store = results.front().ChunkRef(chunk).VoxelStoreRef(lod);
    const ChunkPart whole(store, store.ExtentsRef());
    const Stack full = Stack::WhollyFilled();
    stacks.Clear();
    for (std::size_t i = 0; i < models.size(); ++i) {
        const VoxelChunk<bool>* const source = models[i]->FindChunk(chunk);
        const std::optional<bool> value = UniformValue(source != nullptr ? &source->VoxelStoreRef(lod) : nullptr, whole);
        if (!value) return false;
        if (*value) stacks.Add(full, weights[i]);
    }
    std::vector<Stack> written(results.size());
    stacks.Write(thresholds, written);
    for (std::size_t i = 0; i < results.size(); ++i)
        results[i].ChunkRef(chunk).VoxelStoreRef(lod).MakeUniform(written[i].IsWhollyFilled());
    return true;
}

// Writes the stacks of a chunk of all results. Thresholds <= 0 are reached everywhere, so that the stacks are clipped to the
// extents.
void WriteChunk(std::vector<VoxelModel<bool>>& results, const Triple& chunk, const ModelPointers& models,
                const std::vector<double>& weights, const std::vector<double>& thresholds, WeightedStacks& stacks)
{
    if (WriteUniformChunk(results, chunk, models, weights, thresholds, stacks)) return;
    const std::int64_t lod = results.front().FinestLOD();
    std::vector<Stack> written(results.size());
    ForEachStackOfStore(results.front().ChunkRef(chunk).VoxelStoreRef(lod), [&](Store& store, const StackIndices& ij) {
        stacks.Clear();
        for (std::size_t i = 0; i < models.size(); ++i) {
            const VoxelChunk<bool>* const source = models[i]->FindChunk(chunk);
            if (source == nullptr) continue;
            const Stack& stack = source->VoxelStoreRef(lod).VoxelStackRef(ij);
            if (!stack.IsUnallocated()) stacks.Add(stack, weights[i]);
        }
        CheckWatch();
        stacks.Write(thresholds, written);
        const OffsetBox inExtents = store.Inside(ij);
        for (std::size_t i = 0; i < results.size(); ++i) {
            written[i].FillOutsideBox(inExtents.lower, inExtents.upper, false);
            results[i].ChunkRef(chunk).VoxelStoreRef(lod).VoxelStackRef(ij) = std::move(written[i]);
        }
    });
}

// The chunks in which a threshold may be reached: those that a model stores, or all of the result for a threshold of 0 or below.
std::vector<Triple> ChunksOf(const ModelPointers& models, const VoxelModel<bool>& result, const std::vector<double>& thresholds)
{
    std::vector<Triple> chunks;
    const auto add = [&](const Triple& chunk) {
        if (result.IsChunkValid(chunk)) chunks.push_back(chunk);
    };
    if (std::any_of(thresholds.begin(), thresholds.end(), [](double threshold) { return threshold <= 0; })) {
        chunks.reserve(result.ChunkCount()); // runs out of memory at once where the whole would
        ForEachTriple(result.LowerChunkIndices(), result.UpperChunkIndices(), add);
        return chunks;
    }
    for (const VoxelModel<bool>* model : models) model->ForEachChunk([&](const Triple& chunk, const auto&) { add(chunk); });
    std::sort(chunks.begin(), chunks.end());
    chunks.erase(std::unique(chunks.begin(), chunks.end()), chunks.end());
    return chunks;
}

} // namespace

std::vector<VoxelModel<bool>> DensityMap(const std::vector<const VoxelModel<bool>*>& models, const std::vector<double>& weights,
                                         const std::vector<double>& thresholds, std::int64_t lod)
{
    RequireDensityArguments(models, weights, thresholds, lod);

    const VoxelModel<bool> empty(BoundingExtents(models, lod), lod, models[0]->WhenLevelsAreMade());
    std::vector<VoxelModel<bool>> results(thresholds.size(), empty);
    std::deque<VoxelModel<bool>> refined;
    const ModelPointers sources = AtLevel(models, lod, refined);
    WeightedStacks stacks;
    const std::vector<Triple> chunks = ChunksOf(sources, empty, thresholds);
    WatchedLoop loop(chunks.size());
    for (const Triple& chunk : chunks) {
        RunWith(FastestInstructionSet(), [&] { WriteChunk(results, chunk, sources, weights, thresholds, stacks); });
        loop.Step();
    }
    for (VoxelModel<bool>& result : results) result.FinishLevels(lod);
    return results;
}

} // namespace brix
