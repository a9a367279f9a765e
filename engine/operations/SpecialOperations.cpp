#include "SpecialOperations.h"

#include "../frame/Require.h"
#include "../model/CombineStacks.h"
#include "../model/ForEachStack.h"
#include "../model/InstructionSet.h"
#include "../model/PropagateLevel.h"
#include "BasicOperations.h"
#include "FilledBounds.h"
#include "MergedExtents.h"
#include "RegionLabels.h"

#include <cmath>
#include <deque>
#include <limits>
#include <string>
#include <utility>

namespace brix {
namespace {

using Plate = VoxelPlate<bool>;
using Stack = VoxelStack<bool>;
using Store = VoxelStore<bool>;
using Region = RegionLabels::Region;

constexpr std::uint32_t None = std::numeric_limits<std::uint32_t>::max();

// A chain of records that lie anywhere in a vector, each with the number of the next one.
struct Chain
{
    std::uint32_t first = None;
    std::uint32_t last = None;

    template <class Record> void Append(std::vector<Record>& records, Record record)
    {
        const auto number = static_cast<std::uint32_t>(records.size());
        if (last != None) records[last].next = number;
        if (first == None) first = number;
        last = number;
        records.push_back(std::move(record));
    }
};

// What a region has in one stack.
struct Part
{
    Triple corner; // of the stack, in voxels
    Stack content;
    std::uint32_t next = None;
};

// What a region has in one layer.
struct Piece
{
    Plate plate;
    std::int32_t layer;
    std::uint32_t next = None;
};

// The parts of all regions. Every stack is taken apart once, and its parts go to the regions' models as they are.
class Splitter
{
public:
    explicit Splitter(std::size_t regionCount) : regions_(regionCount), places_(regionCount, None) {}

    // `runs` are the regions of the stack's bit runs, as RegionLabels has them.
    void AddStack(const Stack& stack, const Triple& corner, std::span<const Region> runs);

    std::vector<VoxelModel<bool>> MakeModels(const Axes& axes, std::int64_t lod);

private:
    struct RegionParts
    {
        Triple lower{MaxCoordinate, MaxCoordinate, MaxCoordinate};
        Triple upper{-MaxCoordinate, -MaxCoordinate, -MaxCoordinate};
        Chain parts;
    };
    struct RegionPieces
    {
        Region region;
        Chain pieces;
    };

    void AddPieces(const Plate& plate, std::int32_t layer, std::span<const Region>& runs);
    Plate& PieceOf(Region region, std::int32_t layer);
    void AddPart(Region region, const Triple& corner, Stack content);

    std::vector<RegionParts> regions_;
    std::vector<Part> parts_;
    std::vector<std::uint32_t> places_; // of a region in `present_`
    std::vector<RegionPieces> present_; // the regions of the stack at work
    std::vector<Piece> pieces_;         // and what they have in it
};

// The layers that a region has of a stack, with nothing between them.
Stack MakePart(const Stack& stack, const std::vector<Piece>& pieces, const Chain& chain)
{
    StackBuilder builder;
    std::int64_t z = 0;
    for (std::uint32_t number = chain.first; number != None; number = pieces[number].next) {
        const Piece& piece = pieces[number];
        if (stack.LowerOffset(piece.layer) > z) builder.Append(z, Plate{});
        builder.Append(stack.LowerOffset(piece.layer), piece.plate);
        z = stack.UpperOffset(piece.layer) + 1;
    }
    if (z < Stack::Height) builder.Append(z, Plate{});
    Stack part;
    builder.WriteTo(part);
    return part;
}

void Splitter::AddStack(const Stack& stack, const Triple& corner, std::span<const Region> runs)
{
    if (runs.empty()) return;
    if (std::all_of(runs.begin(), runs.end(), [&](Region region) { return region == runs.front(); }))
        return AddPart(runs.front(), corner, stack);

    for (std::int32_t layer = 0; layer < stack.LayerCount(); ++layer) AddPieces(stack.LayerVoxelPlateRef(layer), layer, runs);
    for (const RegionPieces& present : present_) {
        AddPart(present.region, corner, MakePart(stack, pieces_, present.pieces));
        places_[present.region] = None;
    }
    present_.clear();
    pieces_.clear();
}

// Hands the bit runs of a plate to their regions, and takes them off the list.
void Splitter::AddPieces(const Plate& plate, std::int32_t layer, std::span<const Region>& runs)
{
    for (std::size_t y = 0; y < Plate::Side; ++y) {
        for (unsigned row = plate.rows[y]; row != 0; row = WithoutLowestRun(row)) {
            const unsigned run = row ^ WithoutLowestRun(row);
            PieceOf(runs.front(), layer).rows[y] |= static_cast<std::uint16_t>(run);
            runs = runs.subspan(1);
        }
    }
}

// The plate of a region in the layer at work.
Plate& Splitter::PieceOf(Region region, std::int32_t layer)
{
    if (places_[region] == None) {
        places_[region] = static_cast<std::uint32_t>(present_.size());
        present_.push_back({region, {}});
    }
    Chain& chain = present_[places_[region]].pieces;
    if (chain.last == None || pieces_[chain.last].layer != layer) chain.Append(pieces_, Piece{{}, layer});
    return pieces_[chain.last].plate;
}

void Splitter::AddPart(Region region, const Triple& corner, Stack content)
{
    RegionParts& parts = regions_[region];
    WidenByFilled(content, corner, parts.lower, parts.upper);
    parts.parts.Append(parts_, Part{corner, std::move(content)});
}

std::vector<VoxelModel<bool>> Splitter::MakeModels(const Axes& axes, std::int64_t lod)
{
    std::vector<VoxelModel<bool>> models;
    models.reserve(regions_.size());
    for (const RegionParts& region : regions_) {
        VoxelModel<bool>& model = models.emplace_back(Extents(axes, region.lower, region.upper, lod), lod);
        for (std::uint32_t number = region.parts.first; number != None; number = parts_[number].next) {
            Part& part = parts_[number];
            Store& store = model.ChunkRef(ChunkOfVoxel(part.corner, lod)).VoxelStoreRef(lod);
            store.VoxelStackRef(store.ContainingStack(part.corner)) = std::move(part.content);
        }
        PropagateLevel(model, lod);
    }
    return models;
}

} // namespace

std::vector<VoxelModel<bool>> AutoSplit(const VoxelModel<bool>& model)
{
    const std::int64_t lod = model.FinestLOD();
    const LevelGrid grid(model, model.ExtentsRef(lod));
    const RegionLabels labels(model, grid);
    Splitter splitter(labels.RegionCount());
    ForEachStack(model, lod, [&](const Store& store, const StackIndices& ij) {
        const Triple corner = store.LowerIndices(ij);
        splitter.AddStack(store.VoxelStackRef(ij), corner, labels.RegionsOf(LevelGrid::ContainingStack(corner)));
    });
    return splitter.MakeModels(model.AxesRef(), lod);
}

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

    // Where the sum reaches a level. What has no weight reaches 0, and so does everything, also where weights are below it.
    Plate AtLeast(double level) const
    {
        if (level <= 0) return FilledPlate();
        Plate result;
        for (const Class& voxels : classes_) {
            if (voxels.sum >= level) result = result | voxels.voxels;
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

    // Writes what reaches each level to results[i].
    void Write(const std::vector<double>& levels, const std::vector<Stack*>& results)
    {
        builders_.clear();
        builders_.resize(levels.size());
        HeightSet starts = 1;
        for (const Weighted& stack : stacks_) starts |= stack.layers.Starts();
        for (; starts != 0; starts &= starts - 1) {
            const std::int64_t z = std::countr_zero(starts);
            sums_.Restart();
            for (Weighted& stack : stacks_) {
                stack.layers.MoveTo(z);
                sums_.Add(stack.layers.PlateRef(), stack.weight);
            }
            for (std::size_t i = 0; i < levels.size(); ++i) builders_[i].Append(z, sums_.AtLeast(levels[i]));
        }
        for (std::size_t i = 0; i < levels.size(); ++i) builders_[i].WriteTo(*results[i]);
    }

private:
    struct Weighted
    {
        LayerCursor layers;
        double weight;
    };

    std::vector<Weighted> stacks_;
    std::vector<StackBuilder> builders_; // by level
    PlateSums sums_;
};

void RequireNumbers(const std::vector<double>& values, const std::string& quantity)
{
    for (const double value : values) {
        Require(!std::isnan(value), (quantity + " for a density map must be a number. The value encountered was NaN.").c_str());
    }
}

void RequireDensityArguments(const ModelPointers& models, const std::vector<double>& weights, const std::vector<double>& levels,
                             std::int64_t lod)
{
    Require(!models.empty(), "At least one voxel model is required for a density map.");
    Require(weights.size() == models.size(),
            ("The number of weights for a density map must be equal to the number of voxel models. The number of weights "
             "encountered was " +
             std::to_string(weights.size()) + ". The number of voxel models encountered was " + std::to_string(models.size()) +
             ".")
                .c_str());
    Require(!levels.empty(), "At least one level is required for a density map.");
    RequireNumbers(weights, "A weight");
    RequireNumbers(levels, "A level");
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

// Writes the stacks of a chunk of all results. What lies outside the extents has reached the levels that nothing reaches.
void WriteChunk(std::vector<VoxelModel<bool>>& results, const Triple& chunk, const ModelPointers& models,
                const std::vector<double>& weights, const std::vector<double>& levels, WeightedStacks& stacks)
{
    const std::int64_t lod = results.front().FinestLOD();
    std::vector<Stack*> written(results.size());
    ForEachStackOfStore(results.front().ChunkRef(chunk).VoxelStoreRef(lod), [&](Store& store, const StackIndices& ij) {
        stacks.Clear();
        for (std::size_t i = 0; i < models.size(); ++i) {
            if (!models[i]->IsChunkValid(chunk)) continue;
            const Stack& stack = models[i]->ChunkRef(chunk).VoxelStoreRef(lod).VoxelStackRef(ij);
            if (!stack.IsUnallocated()) stacks.Add(stack, weights[i]);
        }
        for (std::size_t i = 0; i < results.size(); ++i) {
            written[i] = &results[i].ChunkRef(chunk).VoxelStoreRef(lod).VoxelStackRef(ij);
        }
        stacks.Write(levels, written);
        for (Stack* const stack : written) stack->FillOutsideBox(store.LowerOffset(ij), store.UpperOffset(ij), false);
    });
}

} // namespace

std::vector<VoxelModel<bool>> DensityMap(const std::vector<const VoxelModel<bool>*>& models, const std::vector<double>& weights,
                                         const std::vector<double>& levels, std::int64_t lod)
{
    RequireDensityArguments(models, weights, levels, lod);

    const VoxelModel<bool> empty(BoundingExtents(models, lod), lod);
    std::vector<VoxelModel<bool>> results(levels.size(), empty);
    std::deque<VoxelModel<bool>> refined;
    const ModelPointers sources = AtLevel(models, lod, refined);
    WeightedStacks stacks;
    ForEachTriple(empty.LowerChunkIndices(), empty.UpperChunkIndices(), [&](const Triple& chunk) {
        RunWith(FastestInstructionSet(), [&] { WriteChunk(results, chunk, sources, weights, levels, stacks); });
    });
    for (VoxelModel<bool>& result : results) PropagateLevel(result, lod);
    return results;
}

} // namespace brix
