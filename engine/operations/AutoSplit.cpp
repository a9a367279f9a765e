#include "AutoSplit.h"

#include "../model/ChunkPart.h"
#include "../model/CombineStacks.h"
#include "../model/ForEachStack.h"
#include "FilledBounds.h"
#include "RegionLabels.h"

#include <limits>
#include <utility>

namespace brix {
namespace {

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
    Triple Corner() const { return {corner[0], corner[1], corner[2]}; }

    Stack content;
    std::array<std::int32_t, 3> corner; // of the stack, in voxels
    std::uint32_t next = None;
};

// A chunk of which a region has everything.
struct FullChunk
{
    Triple indices;
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

    void AddFullChunk(const Triple& chunk, Region region);

    std::vector<VoxelModel<bool>> MakeModels(const VoxelModel<bool>& source);

private:
    struct RegionParts
    {
        Chain parts;
        Chain fullChunks;
    };
    struct RegionPieces
    {
        Region region;
        Chain pieces;
    };

    void AddPieces(const Plate& plate, std::int32_t layer, std::span<const Region>& runs);
    Plate& PieceOf(Region region, std::int32_t layer);
    void AddPart(Region region, const Triple& corner, Stack content);
    Extents ExtentsOf(const RegionParts& region, const Extents& ofSource) const;

    std::vector<RegionParts> regions_;
    std::vector<Part> parts_;
    std::vector<FullChunk> fullChunks_;
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
    if (z < StackHeight) builder.Append(z, Plate{});
    Stack part;
    builder.WriteTo(part);
    return part;
}

void Splitter::AddStack(const Stack& stack, const Triple& corner, std::span<const Region> runs)
{
    if (runs.empty()) return;
    CheckWatch();
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
    for (std::size_t y = 0; y < PlateWidth; ++y) {
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
    const auto narrow = [](std::int64_t index) { return static_cast<std::int32_t>(index); };
    regions_[region].parts.Append(parts_, Part{std::move(content), {narrow(corner[0]), narrow(corner[1]), narrow(corner[2])}});
}

void Splitter::AddFullChunk(const Triple& chunk, Region region)
{
    regions_[region].fullChunks.Append(fullChunks_, FullChunk{chunk});
}

Extents Splitter::ExtentsOf(const RegionParts& region, const Extents& ofSource) const
{
    Triple lower{MaxCoordinate, MaxCoordinate, MaxCoordinate};
    Triple upper = Minus({}, lower);
    for (std::uint32_t number = region.parts.first; number != None; number = parts_[number].next)
        WidenByFilled(parts_[number].content, parts_[number].Corner(), lower, upper);
    for (std::uint32_t number = region.fullChunks.first; number != None; number = fullChunks_[number].next) {
        const Triple& chunk = fullChunks_[number].indices;
        lower = Lowest(lower, ChunkLowerIndices(chunk, ofSource.VoxelLOD()));
        upper = Highest(upper, Minus(ChunkLowerIndices(Plus(chunk, {1, 1, 1}), ofSource.VoxelLOD()), {1, 1, 1}));
    }
    return ofSource.WithIndices(lower, upper);
}

std::vector<VoxelModel<bool>> Splitter::MakeModels(const VoxelModel<bool>& source)
{
    const std::int64_t lod = source.FinestLOD();
    const Extents& extents = source.ExtentsRef(lod);
    std::vector<VoxelModel<bool>> models;
    models.reserve(regions_.size());
    WatchedLoop loop(regions_.size());
    for (const RegionParts& region : regions_) {
        loop.Step();
        VoxelModel<bool>& model = models.emplace_back(ExtentsOf(region, extents), lod, source.WhenLevelsAreMade());
        for (std::uint32_t number = region.parts.first; number != None; number = parts_[number].next) {
            Part& part = parts_[number];
            MakeStack(model, StackOfVoxel(part.Corner()), lod) = std::move(part.content);
        }
        for (std::uint32_t number = region.fullChunks.first; number != None; number = fullChunks_[number].next)
            model.ChunkRef(fullChunks_[number].indices).VoxelStoreRef(lod).MakeUniform(true);
        model.FinishLevels(lod);
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
    model.ForEachChunk([&](const Triple& chunkIndices, const VoxelChunk<bool>& chunk) {
        const Store& store = chunk.VoxelStoreRef(lod);
        if (IsUniformlyFull(store, ChunkPart(store)))
            return splitter.AddFullChunk(chunkIndices, labels.RegionsOf(StackOfVoxel(store.LowerIndices())).front());
        ForEachStackOfStore(store, [&](const Store&, const StackIndices& ij) {
            const Triple corner = store.LowerIndices(ij);
            splitter.AddStack(store.VoxelStackRef(ij), corner, labels.RegionsOf(StackOfVoxel(corner)));
        });
    });
    return splitter.MakeModels(model);
}

} // namespace brix
