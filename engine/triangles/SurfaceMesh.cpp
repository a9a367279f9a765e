#include "SurfaceMesh.h"

#include "../frame/Require.h"
#include "../model/CombineStacks.h"
#include "../model/StackRows.h"
#include "PartedList.h"
#include "SurfaceShapes.h"

#include <cmath>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>

namespace brix {
namespace {

using Corner = std::array<std::int32_t, 3>; // of voxels of the level: where voxel (x, y, z) begins
using Point = std::array<float, 3>;

// Numbers for 16 x 16 corners of one height. Only those with faces are written, and asked for.
struct CornerNumbers
{
    std::array<std::uint32_t, PlateWidth * PlateWidth> firstVertex;
    std::array<std::uint16_t, PlateWidth * PlateWidth> shape;
};

// The corners at the lower sides of the voxels of a stack's place. Around them lie voxels of four stacks, numbered like voxels
// around a corner.
struct Block
{
    Block(std::int64_t x, std::int64_t y) : place{x, y} {}

    std::array<std::int64_t, 2> place; // in the grid of stacks
    std::array<const VoxelStack<bool>*, 4> stacks{};
    std::array<VoxelPlate<bool>, 4> lower{}; // what each corner sees in the four directions, below and above it
    std::array<VoxelPlate<bool>, 4> upper{};
    std::array<const Block*, 4> lowerNeighbours{}; // itself, and those before it along x, y and both
    std::array<CornerNumbers, 2> numbers;          // of even and odd heights
    VoxelPlate<bool> owners{};                     // the corners whose voxel 0 has a face
};

std::array<VoxelPlate<bool>, 4> SeenFromCorners(const std::array<const VoxelPlate<bool>*, 4>& plates)
{
    const VoxelPlate<bool> before = TowardsLowerX(*plates[1], *plates[0]);
    const VoxelPlate<bool> here = TowardsLowerX(*plates[3], *plates[2]);
    return {TowardsLowerY(here, before), TowardsLowerY(*plates[3], *plates[1]), here, *plates[3]};
}

template <class Visit> void ForEachBit(const VoxelPlate<bool>& plate, const Visit& visit)
{
    if (IsEmpty(plate)) return;
    for (std::size_t y = 0; y < plate.rows.size(); ++y) {
        for (unsigned row = plate.rows[y]; row != 0; row &= row - 1) visit(static_cast<std::size_t>(std::countr_zero(row)), y);
    }
}

class SurfaceWalk
{
public:
    SurfaceWalk(const VoxelModel<bool>& model, std::int64_t lod) : model_(model), lod_(lod) {}

    void Walk()
    {
        const std::int64_t lower = model_.LowerChunkIndices()[2];
        const std::int64_t upper = model_.UpperChunkIndices()[2];
        WatchedLoop loop(static_cast<std::size_t>(upper - lower + 2));
        for (std::int64_t chunkZ = lower; chunkZ <= upper + 1; ++chunkZ) {
            BeginSlab(chunkZ);
            for (std::int64_t z = 0; z < StackHeight && !blocks_.empty(); ++z) AddHeight(chunkZ * StackHeight, z);
            loop.Step();
        }
        blocks_.clear();
        blocksBelow_.clear();
    }

    std::vector<Corner> TakeCorners() { return corners_.TakeAll(); }
    std::vector<std::array<std::uint32_t, 3>> TakeTriangles() { return triangles_.TakeAll(); }

private:
    void BeginSlab(std::int64_t chunkZ);
    void SetStacks(Block& block, std::int64_t chunkZ) const;
    void AddHeight(std::int64_t bottom, std::int64_t z);
    void NumberCorners(Block& block, std::int64_t bottom, std::int64_t z);
    void AddFaces(const Block& block, std::int64_t z);
    void AddFace(const Block& block, std::size_t x, std::size_t y, std::int64_t z, unsigned axis, bool facesUp);
    unsigned ShapeOf(CornerVoxels voxels, const Triple& corner) const;
    CornerVoxels VoxelsAt(const Triple& corner) const;

    static Block* Find(const std::vector<std::unique_ptr<Block>>& blocks, std::int64_t x, std::int64_t y)
    {
        const std::array wanted{y, x};
        const auto found = std::lower_bound(blocks.begin(), blocks.end(), wanted, [](const auto& block, const auto& place) {
            return std::array{block->place[1], block->place[0]} < place;
        });
        return found != blocks.end() && (*found)->place == std::array{x, y} ? found->get() : nullptr;
    }

    const VoxelModel<bool>& model_;
    std::int64_t lod_;
    const CornerShapes& shapes_ = AllCornerShapes();
    std::vector<std::unique_ptr<Block>> blocks_; // by y, then by x
    std::vector<std::unique_ptr<Block>> blocksBelow_;
    std::vector<PlacedStack> stacksBelow_;
    std::uint32_t vertexCount_ = 0;
    PartedList<Corner> corners_; // of each vertex
    PartedList<std::array<std::uint32_t, 3>> triangles_;
};

// Blocks for all places that a stack of this slab or of the one below touches, but for those amidst filled stacks.
void SurfaceWalk::BeginSlab(std::int64_t chunkZ)
{
    std::vector<PlacedStack> stacks;
    if (chunkZ <= model_.UpperChunkIndices()[2]) stacks = StacksOfSlab(model_, lod_, chunkZ);
    std::vector<std::array<std::int64_t, 2>> places;
    for (const auto* const list : {&stacksBelow_, &stacks}) {
        for (const PlacedStack& stack : *list) {
            for (const std::int64_t y : {stack.y, stack.y + 1}) {
                for (const std::int64_t x : {stack.x, stack.x + 1}) places.push_back({y, x});
            }
        }
    }
    stacksBelow_.swap(stacks);
    WatchedSort(places.begin(), places.end(), std::less<>());
    places.erase(std::unique(places.begin(), places.end()), places.end());

    blocksBelow_.swap(blocks_);
    blocks_.clear();
    for (const auto& [y, x] : places) {
        auto block = std::make_unique<Block>(x, y);
        SetStacks(*block, chunkZ);
        const auto isFull = [](const VoxelPlate<bool>& plate) { return IsFull(plate); };
        const auto isSolid = [](const VoxelStack<bool>* stack) { return stack->IsWhollyFilled(); };
        if (std::all_of(block->stacks.begin(), block->stacks.end(), isSolid) &&
            std::all_of(block->upper.begin(), block->upper.end(), isFull))
            continue;
        if (const Block* const below = Find(blocksBelow_, x, y)) block->numbers[1] = below->numbers[1];
        blocks_.push_back(std::move(block));
        CheckWatch();
    }
    for (auto& block : blocks_) {
        const auto [x, y] = block->place;
        block->lowerNeighbours = {block.get(), Find(blocks_, x - 1, y), Find(blocks_, x, y - 1), Find(blocks_, x - 1, y - 1)};
    }
    blocksBelow_.clear();
}

// The stacks around a block, and what its corners see at the top of those below.
void SurfaceWalk::SetStacks(Block& block, std::int64_t chunkZ) const
{
    std::array<const VoxelPlate<bool>*, 4> below{};
    for (std::size_t k = 0; k < 4; ++k) {
        const std::int64_t x = block.place[0] - (k % 2 == 0 ? 1 : 0);
        const std::int64_t y = block.place[1] - (k / 2 == 0 ? 1 : 0);
        block.stacks[k] = &FindStack(model_, {x, y, chunkZ}, lod_);
        below[k] = &FindStack(model_, {x, y, chunkZ - 1}, lod_).Plates().back();
    }
    block.upper = SeenFromCorners(below);
}

void SurfaceWalk::AddHeight(std::int64_t bottom, std::int64_t z)
{
    for (auto& block : blocks_) NumberCorners(*block, bottom, z);
    CheckWatch();
    for (const auto& block : blocks_) AddFaces(*block, z);
    CheckWatch();
}

void SurfaceWalk::NumberCorners(Block& block, std::int64_t bottom, std::int64_t z)
{
    block.lower = block.upper;
    HeightSet starts = 0;
    for (const VoxelStack<bool>* const stack : block.stacks) starts |= stack->LayerStarts();
    if ((starts >> z & 1) != 0) {
        std::array<const VoxelPlate<bool>*, 4> plates{};
        for (std::size_t k = 0; k < 4; ++k) plates[k] = &block.stacks[k]->LayerVoxelPlateRef(block.stacks[k]->LayerID(z));
        block.upper = SeenFromCorners(plates);
    }
    const auto& [a, b, c, d] = block.lower;
    const auto& [e, f, g, h] = block.upper;
    block.owners = (a ^ b) | (a ^ c) | (a ^ e);
    const VoxelPlate<bool> mixed = block.owners | (a ^ d) | (a ^ f) | (a ^ g) | (a ^ h);

    CornerNumbers& numbers = block.numbers[static_cast<std::size_t>(z & 1)];
    ForEachBit(mixed, [&](std::size_t x, std::size_t y) {
        CornerVoxels voxels = 0;
        for (std::size_t k = 0; k < 4; ++k) {
            voxels |= (block.lower[k].rows[y] >> x & 1U) << k;
            voxels |= (block.upper[k].rows[y] >> x & 1U) << (k + 4);
        }
        const Triple corner{block.place[0] * PlateWidth + static_cast<std::int64_t>(x),
                            block.place[1] * PlateWidth + static_cast<std::int64_t>(y), bottom + z};
        const unsigned shape = ShapeOf(voxels, corner);
        const std::uint32_t sheetCount = shapes_[shape].sheetCount;
        if (vertexCount_ > std::numeric_limits<std::uint32_t>::max() - sheetCount)
            throw std::length_error("The surface mesh would have more vertices than the 4294967295 that can be numbered.");
        const std::size_t place = y * static_cast<std::size_t>(PlateWidth) + x;
        numbers.firstVertex[place] = vertexCount_;
        numbers.shape[place] = static_cast<std::uint16_t>(shape);
        vertexCount_ += sheetCount;
        for (std::uint32_t sheet = 0; sheet < sheetCount; ++sheet)
            corners_.Add({static_cast<std::int32_t>(corner[0]), static_cast<std::int32_t>(corner[1]),
                          static_cast<std::int32_t>(corner[2])});
    });
}

// Saddles are rare: what lies at the other end of their edge is looked up.
unsigned SurfaceWalk::ShapeOf(CornerVoxels voxels, const Triple& corner) const
{
    const unsigned saddle = shapes_[voxels].saddle;
    if (saddle == NoSaddle) return voxels;
    Triple end = corner;
    end[saddle / 2] += (saddle & 1) != 0 ? 1 : -1;
    return shapes_[VoxelsAt(end)].saddle == (saddle ^ 1) ? voxels + 256 : voxels;
}

CornerVoxels SurfaceWalk::VoxelsAt(const Triple& corner) const
{
    CornerVoxels voxels = 0;
    for (unsigned k = 0; k < 8; ++k) {
        const Triple voxel = Minus(corner, {1 - (k & 1), 1 - (k >> 1 & 1), 1 - (k >> 2)});
        const Triple offset = Minus(voxel, CornerOfStack(StackOfVoxel(voxel)));
        const VoxelStack<bool>& stack = FindStack(model_, StackOfVoxel(voxel), lod_);
        if (stack.LayerVoxelPlateRef(stack.LayerID(offset[2])).Value({offset[0], offset[1]})) voxels |= 1U << k;
    }
    return voxels;
}

// Each face is added at its upper corner: all its corners have their numbers then.
void SurfaceWalk::AddFaces(const Block& block, std::int64_t z)
{
    ForEachBit(block.owners, [&](std::size_t x, std::size_t y) {
        const auto isFilled = [&](const VoxelPlate<bool>& plate) { return (plate.rows[y] >> x & 1) != 0; };
        const bool here = isFilled(block.lower[0]);
        if (here != isFilled(block.lower[1])) AddFace(block, x, y, z, 0, here);
        if (here != isFilled(block.lower[2])) AddFace(block, x, y, z, 1, here);
        if (here != isFilled(block.upper[0])) AddFace(block, x, y, z, 2, here);
    });
}

void SurfaceWalk::AddFace(const Block& block, std::size_t x, std::size_t y, std::int64_t z, unsigned axis, bool facesUp)
{
    // The corner that lies one step back along the axes in `back`, bit by bit, sees the face on its upper side along them.
    const auto vertexAt = [&](unsigned quadrant) {
        const unsigned back = VoxelBelowFace(4 * axis + quadrant);
        const bool leavesX = (back & 1) > x;
        const bool leavesY = (back >> 1 & 1) > y;
        const Block& at = *block.lowerNeighbours[(leavesX ? 1U : 0U) + (leavesY ? 2U : 0U)];
        const std::size_t place = ((y - (back >> 1 & 1)) & 15) * 16 + ((x - (back & 1)) & 15);
        const CornerNumbers& numbers = at.numbers[static_cast<std::size_t>((z - (back >> 2)) & 1)];
        return numbers.firstVertex[place] + shapes_[numbers.shape[place]].sheets[4 * axis + quadrant];
    };
    const std::array around{vertexAt(3), vertexAt(2), vertexAt(0), vertexAt(1)};
    const std::uint32_t second = around[facesUp ? 1 : 3];
    const std::uint32_t last = around[facesUp ? 3 : 1];
    triangles_.Add({around[0], second, around[2]});
    triangles_.Add({around[0], around[2], last});
}

// Corners moved by parts of a voxel to world points.
class ToWorld
{
public:
    ToWorld(const Axes& axes, std::int64_t lod)
        : axes_(axes),
          lod_(lod),
          width_(axes.WorldVoxelWidth(lod)),
          height_(axes.WorldVoxelHeight()),
          sin_(axes.WorldConversion().sin),
          cos_(axes.WorldConversion().cos)
    {}

    std::array<double, 3> At(const Corner& corner) const
    {
        return axes_.ToWorldCoordinates(axes_.VoxelCorner({corner[0], corner[1], corner[2]}, lod_));
    }
    std::array<double, 3> At(const Corner& corner, const Point& offset) const
    {
        const auto [x, y, z] = At(corner);
        const double u = width_ * static_cast<double>(offset[0]);
        const double v = width_ * static_cast<double>(offset[1]);
        return {x + cos_ * u - sin_ * v, y + sin_ * u + cos_ * v, z + height_ * static_cast<double>(offset[2])};
    }

private:
    const Axes& axes_;
    std::int64_t lod_;
    double width_, height_, sin_, cos_;
};

// Calls visit(a, b) for both directions of every edge of a face; each runs along two faces, which take one direction each.
template <class Visit> void ForEachFaceEdge(const std::vector<std::array<std::uint32_t, 3>>& triangles, const Visit& visit)
{
    WatchedLoop loop(triangles.size() / 2);
    for (std::size_t i = 0; i < triangles.size(); i += 2) {
        const auto [a, b, c] = triangles[i];
        const std::uint32_t d = triangles[i + 1][2];
        visit(a, b);
        visit(b, c);
        visit(c, d);
        visit(d, a);
        loop.Step();
    }
}

class Smoothing
{
public:
    Smoothing(const std::vector<Corner>& corners, const std::vector<std::array<std::uint32_t, 3>>& triangles)
        : corners_(corners), triangles_(triangles), offsets_(corners.size()), sums_(corners.size()), counts_(corners.size())
    {
        ForEachFaceEdge(triangles, [&](std::uint32_t a, std::uint32_t) { ++counts_[a]; });
        Begin();
    }

    void Step()
    {
        Clear();
        ForEachFaceEdge(triangles_, [&](std::uint32_t a, std::uint32_t b) {
            for (std::size_t i = 0; i < 3; ++i)
                sums_[a][i] += static_cast<float>(corners_[b][i] - corners_[a][i]) + offsets_[b][i];
        });
        Apply();
    }

    std::vector<Point> TakeOffsets() { return std::move(offsets_); }

private:
    // The mean of the centres of the faces: half of a face's diagonal from each of its corners.
    void Begin()
    {
        for (std::size_t i = 0; i < triangles_.size(); i += 2) {
            const auto [a, b, c] = triangles_[i];
            const std::uint32_t d = triangles_[i + 1][2];
            AddHalfway(a, c);
            AddHalfway(c, a);
            AddHalfway(b, d);
            AddHalfway(d, b);
        }
        Apply();
    }
    void AddHalfway(std::uint32_t from, std::uint32_t to)
    {
        for (std::size_t i = 0; i < 3; ++i) sums_[from][i] += 0.5F * static_cast<float>(corners_[to][i] - corners_[from][i]);
    }

    void Clear() { std::fill(sums_.begin(), sums_.end(), Point{}); }
    void Apply()
    {
        for (std::size_t v = 0; v < offsets_.size(); ++v) {
            for (std::size_t i = 0; i < 3; ++i)
                offsets_[v][i] = std::clamp(sums_[v][i] / static_cast<float>(counts_[v]), -0.5F, 0.5F);
        }
        CheckWatch();
    }

    const std::vector<Corner>& corners_;
    const std::vector<std::array<std::uint32_t, 3>>& triangles_;
    std::vector<Point> offsets_; // from the corners, in voxels
    std::vector<Point> sums_;
    std::vector<std::uint8_t> counts_; // of the faces around each vertex, twelve at most
};

// The sum of what the triangles around a vertex span, which weighs them by their area.
std::vector<Point> NormalsOf(const IndexedMesh& mesh)
{
    std::vector<Point> normals(mesh.vertices.size());
    WatchedLoop loop(mesh.triangles.size());
    for (const auto& triangle : mesh.triangles) {
        const auto& a = mesh.vertices[triangle[0]];
        const auto side = [&](std::size_t corner, std::size_t i) { return mesh.vertices[triangle[corner]][i] - a[i]; };
        for (std::size_t i = 0; i < 3; ++i) {
            const std::size_t j = (i + 1) % 3;
            const std::size_t k = (i + 2) % 3;
            const auto area = static_cast<float>(side(1, j) * side(2, k) - side(1, k) * side(2, j));
            for (const std::uint32_t vertex : triangle) normals[vertex][i] += area;
        }
        loop.Step();
    }
    for (Point& normal : normals) {
        const float length = std::hypot(normal[0], normal[1], normal[2]);
        if (length > 0)
            for (float& part : normal) part /= length;
        else
            normal = {0, 0, 1}; // what surrounds the vertex has shrunk to nothing
    }
    return normals;
}

} // namespace

IndexedMesh SurfaceMesh(const VoxelModel<bool>& model, std::int64_t lod, const SurfaceMeshOptions& options)
{
    RequireLevelOf(model.FinestLOD(), "The level of detail for surface meshes", lod);
    if (options.smoothingSteps < 0)
        throw std::domain_error("The number of smoothing steps cannot be negative. A value of " +
                                std::to_string(options.smoothingSteps) + " was encountered.");
    SurfaceWalk walk(model, lod);
    walk.Walk();
    const std::vector<Corner> corners = walk.TakeCorners();
    IndexedMesh mesh;
    mesh.triangles = walk.TakeTriangles();

    std::vector<Point> offsets;
    if (options.style == SurfaceStyle::Smooth) {
        Smoothing smoothing(corners, mesh.triangles);
        for (int step = 0; step < options.smoothingSteps; ++step) smoothing.Step();
        offsets = smoothing.TakeOffsets();
    }
    const ToWorld toWorld(model.AxesRef(), lod);
    mesh.vertices.resize(corners.size());
    WatchedLoop loop(corners.size());
    for (std::size_t i = 0; i < corners.size(); ++i) {
        mesh.vertices[i] = offsets.empty() ? toWorld.At(corners[i]) : toWorld.At(corners[i], offsets[i]);
        loop.Step();
    }
    if (options.style == SurfaceStyle::Smooth) mesh.normals = NormalsOf(mesh);
    return mesh;
}

} // namespace brix
