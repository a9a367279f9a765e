#include "Voxelize.h"

#include "../frame/Require.h"
#include "../model/ForEachStack.h"
#include "ExtentsAround.h"
#include "IndexedTriangles.h"
#include "PackWorldTriangles.h"
#include "TriangleMesh.h"
#include "TriangleRaster.h"
#include "Voxelization.h"

#include <limits>
#include <optional>

namespace brix {
namespace {

// 32 MiB of plates.
constexpr std::size_t MostOpenStacks = 16384;

// What small triangles fill of a chunk, before the extents are known.
class Canvas
{
public:
    Canvas(const LevelBounds& indexSpace, const Triple& lowerIndices) : store_(std::in_place, indexSpace, lowerIndices) {}

    TriangleRaster& Open(const Triple& voxelSize)
    {
        if (!raster_) raster_.emplace(*store_, voxelSize);
        return *raster_;
    }
    bool IsOpen() const { return raster_.has_value(); }
    std::size_t OpenStacks() const { return IsOpen() ? raster_->OpenStacks() : 0; }
    void Close()
    {
        if (IsOpen()) raster_->Close();
        raster_.reset();
    }

    // Moves the stacks to a store of the same level and place. What a model has below its extents is dropped on the way.
    void MoveTo(VoxelStore<bool>& store, bool isFilledBelow)
    {
        Close();
        ForEachStackOfStore(store, [&](VoxelStore<bool>& written, const StackIndices& ij) {
            VoxelStack<bool>& stack = store_->ValidStackRef(ij);
            if (stack.IsUnallocated()) return;
            const OffsetBox inside = written.Inside(ij);
            if (isFilledBelow && inside.lower[2] > 0) stack.FillOutsideBox(inside.lower, inside.upper, false);
            written.ValidStackRef(ij) = std::move(stack);
        });
        store_.reset();
    }

private:
    std::optional<VoxelStore<bool>> store_;
    std::optional<TriangleRaster> raster_;
};

Extents IndexSpace(const Axes& axes, std::int64_t lod)
{
    const Triple most{MaxHorizontalExtent(0), MaxHorizontalExtent(0), MaxVerticalExtent(axes.VerticalLOD())};
    return Extents(axes, Minus({}, most), Minus(most, {1, 1, 1}), 0).RescaledCopy(lod);
}

Triple ChunkSize(const Axes& axes)
{
    const Triple voxel = axes.VoxelSize(0);
    return {ChunkWidth * voxel[0], ChunkWidth * voxel[1], ChunkHeight * voxel[2]};
}

// Fills what small triangles touch as they come, and puts large ones by: how they lie in chunks is asked when the extents are
// known.
class Voxelizer
{
public:
    Voxelizer(const Axes& axes, std::int64_t finestLOD)
        : axes_(axes),
          finestLOD_(finestLOD),
          voxelSize_(axes.VoxelSize(finestLOD)),
          chunkSize_(ChunkSize(axes)),
          indexSpace_(IndexSpace(axes, finestLOD)),
          canvases_(ChunkOfVoxel(indexSpace_.ExtentsRef().LowerIndices(), finestLOD),
                    ChunkOfVoxel(indexSpace_.ExtentsRef().UpperIndices(), finestLOD))
    {}

    void Add(std::span<const WorldTriangle> triangles)
    {
        ForEachPackedBatch(axes_, triangles, instructionSet_, [&](const PackedBatch& batch) { Add(batch); });
    }

    VoxelModel<bool> Finish()
    {
        const Extents extents = EnclosingExtents();
        VoxelModel<bool> model(extents, finestLOD_);
        const bool isFilledBelow = lower_[2] % voxelSize_[2] == 0;
        canvases_.ForEach([&](const Triple& chunk, Canvas& canvas) {
            CheckWatch();
            if (model.IsChunkValid(chunk)) canvas.MoveTo(model.ChunkRef(chunk).VoxelStoreRef(finestLOD_), isFilledBelow);
        });
        FillLarge(model);
        model.FinishLevels(finestLOD_);
        return model;
    }

private:
    void Add(const PackedBatch& batch)
    {
        for (std::size_t i = 0; i < batch.packed.size(); ++i) {
            if (current_ != nullptr) {
                TriangleRaster& raster = OpenRaster(*current_);
                const std::size_t before = raster.OpenStacks();
                i += raster.FillThoseInside(batch.packed.subspan(i), bounds_, instructionSet_);
                openStacks_ += raster.OpenStacks() - before;
            }
            if (i < batch.packed.size()) AddElsewhere(batch.packed[i], batch.world[i]);
            if (openStacks_ > MostOpenStacks) CloseAll();
        }
    }

    // A triangle that is not wholly in the current chunk. Those that follow will often be where it is.
    [[gnu::noinline]] void AddElsewhere(const PackedTriangle& packed, const WorldTriangle& world)
    {
        LatticeTriangle triangle = Unpacked(packed);
        const bool isHeld = std::find(packed.begin(), packed.end(), MaxPackedCoordinate) != packed.end(); // at the bound
        if (isHeld || !IsPackable(triangle))
            triangle = {axes_.FromWorldCoordinates(world[0]), axes_.FromWorldCoordinates(world[1]),
                        axes_.FromWorldCoordinates(world[2])};
        for (const Triple& corner : triangle) {
            lower_ = Lowest(lower_, corner);
            upper_ = Highest(upper_, corner);
        }
        if (!IsPackable(triangle)) return large_.push_back(triangle);

        const TriangleBox box(triangle);
        ForEachTriple(Highest(ChunkOf(box.lower), canvases_.LowerIndices()), Lowest(ChunkOf(box.upper), canvases_.UpperIndices()),
                      [&](const Triple& chunk) {
                          current_ = &canvases_.FindOrMake(
                              chunk, [&] { return std::make_unique<Canvas>(indexSpace_, ChunkLowerIndices(chunk, finestLOD_)); });
                          TriangleRaster& raster = OpenRaster(*current_);
                          const std::size_t before = raster.OpenStacks();
                          raster.Fill(packed, instructionSet_);
                          openStacks_ += raster.OpenStacks() - before;
                      });
    }

    TriangleRaster& OpenRaster(Canvas& canvas)
    {
        if (!canvas.IsOpen()) open_.push_back(&canvas);
        return canvas.Open(voxelSize_);
    }

    void CloseAll()
    {
        for (Canvas* const canvas : open_) canvas->Close();
        open_.clear();
        openStacks_ = 0;
    }

    Triple ChunkOf(const Triple& coords) const
    {
        return {FloorDivide(coords[0], chunkSize_[0]), FloorDivide(coords[1], chunkSize_[1]),
                FloorDivide(coords[2], chunkSize_[2])};
    }

    // What DetectTriangleExtents gives for all triangles.
    Extents EnclosingExtents()
    {
        if (IsAnyOf(bounds_.lower < bounds_.upper)) {
            for (std::size_t i = 0; i < 3; ++i) {
                const auto axis = static_cast<int>(i);
                lower_[i] = std::min<std::int64_t>(lower_[i], bounds_.lower[axis] + 1);
                upper_[i] = std::max<std::int64_t>(upper_[i], bounds_.upper[axis]);
            }
        }
        return ExtentsAround(axes_, lower_, upper_);
    }

    // First the chunks that each triangle touches, which are voxels for that matter; then chunk by chunk what they fill there.
    void FillLarge(VoxelModel<bool>& model) const
    {
        ChunkTable<std::vector<const LatticeTriangle*>> touching(model.LowerChunkIndices(), model.UpperChunkIndices());
        for (const LatticeTriangle& triangle : large_) {
            TriangleRows(triangle, chunkSize_)
                .ForEachRow(
                    touching.LowerIndices(), touching.UpperIndices(), [&](std::int64_t y, std::int64_t z, const VoxelRun& run) {
                        CheckWatch();
                        for (std::int64_t x = run.first; x <= run.last; ++x)
                            touching.FindOrMake({x, y, z}, [] { return std::make_unique<std::vector<const LatticeTriangle*>>(); })
                                .push_back(&triangle);
                    });
        }
        WatchedLoop loop(touching.Size());
        touching.ForEach([&](const Triple& chunk, const std::vector<const LatticeTriangle*>& triangles) {
            TriangleRaster raster(model.ChunkRef(chunk).VoxelStoreRef(finestLOD_), voxelSize_);
            for (const LatticeTriangle* const triangle : triangles) {
                raster.FillWhole(*triangle);
                CheckWatch();
            }
            raster.Close();
            loop.Step();
        });
    }

    static constexpr std::int64_t Most = std::numeric_limits<std::int64_t>::max();

    const Axes& axes_;
    const std::int64_t finestLOD_;
    const Triple voxelSize_;
    const Triple chunkSize_; // in base units
    const LevelBounds indexSpace_;
    const InstructionSet instructionSet_ = FastestInstructionSet();
    ChunkTable<Canvas> canvases_;
    Canvas* current_ = nullptr;
    std::vector<Canvas*> open_;
    std::size_t openStacks_ = 0;
    std::vector<LatticeTriangle> large_;
    PackedBounds bounds_;            // of the triangles that lie in one chunk
    Triple lower_{Most, Most, Most}; // of the others
    Triple upper_{-Most, -Most, -Most};
};

// Triangles of a mesh, put together a few at a time.
template <class Number>
VoxelModel<bool> VoxelizeMesh(const Axes& axes, std::span<const std::array<Number, 3>> vertices,
                              std::span<const std::array<std::uint32_t, 3>> triangles, std::int64_t finestLOD)
{
    for (const auto& triangle : triangles) {
        for (const std::uint32_t vertex : triangle) RequireVertexIndex(vertex, vertices.size());
    }
    RequireLevel("The finest level of detail in a voxel model", finestLOD);
    if (triangles.empty()) return Voxelize(axes, std::span<const WorldTriangle>(), finestLOD);
    const IndexedTriangles<Number> mesh{vertices, triangles};
    Voxelizer voxelizer(axes, finestLOD);
    std::array<WorldTriangle, 128> batch;
    WatchedLoop loop(triangles.size());
    for (std::size_t first = 0; first < triangles.size(); first += batch.size()) {
        const std::size_t count = std::min(batch.size(), triangles.size() - first);
        for (std::size_t i = 0; i < count; ++i) batch[i] = mesh[first + i];
        voxelizer.Add({batch.data(), count});
        loop.Step(count);
    }
    return voxelizer.Finish();
}

} // namespace

VoxelModel<bool> Voxelize(const Axes& axes, std::span<const WorldTriangle> triangles, std::int64_t finestLOD)
{
    RequireLevel("The finest level of detail in a voxel model", finestLOD);
    if (triangles.empty()) return VoxelModel<bool>(DetectTriangleExtents(axes, triangles), finestLOD);
    Voxelizer voxelizer(axes, finestLOD);
    voxelizer.Add(triangles);
    return voxelizer.Finish();
}

VoxelModel<bool> Voxelize(const Axes& axes, std::span<const std::array<double, 3>> vertices,
                          std::span<const std::array<std::uint32_t, 3>> triangles, std::int64_t finestLOD)
{
    return VoxelizeMesh(axes, vertices, triangles, finestLOD);
}

VoxelModel<bool> Voxelize(const Axes& axes, std::span<const std::array<float, 3>> vertices,
                          std::span<const std::array<std::uint32_t, 3>> triangles, std::int64_t finestLOD)
{
    return VoxelizeMesh(axes, vertices, triangles, finestLOD);
}

} // namespace brix
