#include "SurfaceMesh.h"

#include "../frame/Require.h"
#include "../model/InstructionSet.h"
#include "SurfaceCorners.h"
#include "SurfaceShapes.h"
#include "SurfaceSmoothing.h"

#include <limits>
#include <stdexcept>
#include <string>

namespace brix {
namespace {

using Entries = CornerBlock::Entries;

// The shape around each corner at which voxels of both kinds meet.
class ShapesOfCorners
{
public:
    ShapesOfCorners(const VoxelModel<bool>& model, std::int64_t lod) : model_(model), lod_(lod) {}

    unsigned At(const CornerPlates& block, std::size_t x, std::size_t y, std::int64_t z) const
    {
        CornerVoxels voxels = 0;
        for (std::size_t k = 0; k < 4; ++k) {
            voxels |= (block.lower[k].rows[y] >> x & 1U) << k;
            voxels |= (block.upper[k].rows[y] >> x & 1U) << (k + 4);
        }
        const unsigned saddle = shapes_[voxels].saddle;
        return saddle == NoSaddle ? voxels : AtSaddle(CornerOf(block, x, y, z), voxels);
    }

    static Triple CornerOf(const CornerPlates& block, std::size_t x, std::size_t y, std::int64_t z)
    {
        return {block.place[0] * PlateWidth + static_cast<std::int64_t>(x),
                block.place[1] * PlateWidth + static_cast<std::int64_t>(y), z};
    }

private:
    // Saddles are rare: what lies at the other end of their edge is looked up.
    unsigned AtSaddle(Triple corner, CornerVoxels voxels) const
    {
        const unsigned saddle = shapes_[voxels].saddle;
        corner[saddle / 2] += (saddle & 1) != 0 ? 1 : -1;
        return shapes_[VoxelsAt(corner)].saddle == (saddle ^ 1) ? voxels + 256 : voxels;
    }

    CornerVoxels VoxelsAt(const Triple& corner) const
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

    const VoxelModel<bool>& model_;
    std::int64_t lod_;
    const CornerShapes& shapes_ = AllCornerShapes();
};

// The entries of corners on the borders of the blocks before a block, in its row 0 and column 0: those that share a face with a
// corner in its own first row or column, which is mixed then.
void CopyBorders(CornerBlock& block, std::size_t parity)
{
    constexpr std::size_t length = CornerBlock::RowLength;
    Entries& entries = block.entries[parity];
    const auto [beforeX, beforeY, beforeBoth] = block.before;
    const std::uint16_t column = beforeX != nullptr || beforeBoth != nullptr ? block.mixed.Column(0) : std::uint16_t{0};
    if (beforeX != nullptr && column != 0) {
        for (std::size_t y = 1; y < length; ++y) entries[y * length] = beforeX->entries[parity][y * length + PlateWidth];
    }
    if (beforeY != nullptr && block.mixed.rows[0] != 0)
        std::copy_n(&beforeY->entries[parity][PlateWidth * length + 1], PlateWidth, &entries[1]);
    if (beforeBoth != nullptr && (column & 1) != 0) entries[0] = beforeBoth->entries[parity].back();
}

// Numbers vertices, adds faces. addVertex(corner, shape, sheet) is called for each vertex in the order of their numbers.
template <class AddVertex> class MeshMaker
{
public:
    using Faces = std::vector<std::array<std::uint32_t, 4>>;

    MeshMaker(const VoxelModel<bool>& model, std::int64_t lod, Faces& faces, const AddVertex& addVertex)
        : model_(model), lod_(lod), shapeAt_(model, lod), faces_(faces), addVertex_(addVertex)
    {}

    void Make()
    {
        CornerWalk(model_, lod_).ForEachHeight([&](CornerWalk::Blocks blocks, std::int64_t z) {
            RunWith(instructionSet_, [&] { MakeHeight(blocks, z); });
        });
    }

private:
    static std::size_t Parity(std::int64_t z) { return static_cast<std::size_t>(z & 1); }

    void MakeHeight(CornerWalk::Blocks blocks, std::int64_t z)
    {
        for (const auto& block : blocks) {
            if (!IsEmpty(block->mixed)) NumberCorners(*block, z);
        }
        for (const auto& block : blocks) {
            if (IsEmpty(block->mixed)) continue;
            CopyBorders(*block, Parity(z));
            AddFaces<0>(*block, z);
            AddFaces<1>(*block, z);
            if (!block->isAsBelow) AddFaces<2>(*block, z);
        }
    }

    void NumberCorners(CornerBlock& block, std::int64_t z)
    {
        Entries& entries = block.entries[Parity(z)];
        const Entries& below = block.entries[Parity(z - 1)];
        ForEachBit(block.mixed, [&](std::size_t x, std::size_t y) {
            const std::size_t here = (y + 1) * CornerBlock::RowLength + x + 1;
            const bool isAsBelow = block.isAsBelow && shapes_[below[here].shape].saddle == NoSaddle;
            const unsigned shape = isAsBelow ? below[here].shape : shapeAt_.At(block, x, y, z);
            entries[here] = {vertexCount_, shape};
            const Triple corner = ShapesOfCorners::CornerOf(block, x, y, z);
            for (unsigned sheet = 0; sheet < shapes_[shape].sheetCount; ++sheet, ++vertexCount_) addVertex_(corner, shape, sheet);
        });
    }

    // Each face is added at its upper corner: all its corners have their numbers then.
    template <unsigned axis> void AddFaces(const CornerBlock& block, std::int64_t z)
    {
        const std::array heights{block.entries[Parity(z)].data(), block.entries[Parity(z - 1)].data()};
        ForEachBit(block.FacesAcross(axis), [&](std::size_t x, std::size_t y) {
            const std::size_t here = (y + 1) * CornerBlock::RowLength + x + 1;
            // The corner that lies one step back along the axes in `back`, bit by bit, sees the face on its upper side along
            // them.
            const auto vertexAt = [&](unsigned quadrant) {
                const unsigned back = VoxelBelowFace(4 * axis + quadrant);
                const CornerEntry& entry = heights[back >> 2][here - (back & 1) - CornerBlock::RowLength * (back >> 1 & 1)];
                return entry.firstVertex + shapes_[entry.shape].sheets[4 * axis + quadrant];
            };
            const std::array around{vertexAt(3), vertexAt(2), vertexAt(0), vertexAt(1)};
            const bool facesUp = (block.lower[0].rows[y] >> x & 1) != 0;
            const std::uint32_t second = around[facesUp ? 1 : 3];
            const std::uint32_t last = around[facesUp ? 3 : 1];
            faces_.push_back({around[0], second, around[2], last});
        });
    }

    const VoxelModel<bool>& model_;
    std::int64_t lod_;
    const ShapesOfCorners shapeAt_;
    const CornerShapes& shapes_ = AllCornerShapes();
    Faces& faces_;
    const AddVertex& addVertex_;
    std::uint32_t vertexCount_ = 0;
    const InstructionSet instructionSet_ = FastestInstructionSet();
};

template <class AddVertex>
void MakeMesh(FaceMesh& mesh, const VoxelModel<bool>& model, std::int64_t lod, const AddVertex& addVertex)
{
    MeshMaker<AddVertex>(model, lod, mesh.faces, addVertex).Make();
}

void RequireNumbers(const SurfaceSize& size)
{
    constexpr std::int64_t most = std::numeric_limits<std::uint32_t>::max();
    if (size.vertices > most) {
        throw std::length_error("The surface mesh would have " + std::to_string(size.vertices) + " vertices, more than the " +
                                std::to_string(most) + " that can be numbered.");
    }
}

void RequireSurfaceLevel(const VoxelModel<bool>& model, std::int64_t lod)
{
    RequireLevelOf(model.FinestLOD(), "The level of detail for surface meshes", lod);
}

// Faces and vertices at the corners of one place.
void AddPlace(SurfaceSize& size, CornerPlates plates, std::int64_t bottom, const ShapesOfCorners& shapeAt)
{
    std::int64_t faces = 0; // of one height
    std::int64_t corners = 0;
    VoxelPlate<bool> split{};
    for (std::int64_t z = 0; z < StackHeight; ++z) {
        plates.MoveTo(z);
        if (!plates.isAsBelow) {
            faces = 0;
            for (const std::size_t axis : {0U, 1U, 2U}) faces += Count(plates.FacesAcross(axis));
            corners = Count(plates.mixed);
            split = plates.Split();
        }
        size.faces += faces;
        size.vertices += corners;
        ForEachBit(split, [&](std::size_t x, std::size_t y) {
            size.vertices += AllCornerShapes()[shapeAt.At(plates, x, y, bottom + z)].sheetCount - 1;
        });
    }
}

} // namespace

SurfaceSize SizeOfSurface(const VoxelModel<bool>& model, std::int64_t lod)
{
    RequireSurfaceLevel(model, lod);
    const ShapesOfCorners shapeAt(model, lod);
    SurfaceSize size;
    std::int64_t blocksBelow = 0;
    ForEachCornerSlab(model, [&](std::int64_t chunkZ) {
        std::int64_t blocks = 0;
        ForEachCornerPlace(model, lod, chunkZ, [&](const CornerPlates& plates) {
            ++blocks;
            AddPlace(size, plates, chunkZ * StackHeight, shapeAt);
        });
        // Two lists of pointers, which are half as long again as they need to be.
        const auto walkBytes = static_cast<double>(blocks + blocksBelow) * (sizeof(CornerBlock) + 5 * sizeof(void*));
        size.walkBytes = std::max(size.walkBytes, walkBytes);
        blocksBelow = blocks;
    });
    return size;
}

double BytesToMakeSurface(const SurfaceSize& size, const SurfaceMeshOptions& options)
{
    const double pointBytes = sizeof(FaceMesh::vertices[0]);
    const double normalBytes = options.style == SurfaceStyle::Smooth ? sizeof(FaceMesh::normals[0]) : 0;
    const bool smooths = options.style == SurfaceStyle::Smooth && options.smoothingSteps > 0;
    const double vertexBytes = pointBytes + (smooths ? Smoothing::BytesPerVertex : normalBytes);
    return 2 * sizeof(FaceMesh) + size.walkBytes + static_cast<double>(size.vertices) * vertexBytes +
           static_cast<double>(size.faces) * sizeof(FaceMesh::faces[0]);
}

FaceMesh SurfaceMesh(const VoxelModel<bool>& model, std::int64_t lod, const SurfaceMeshOptions& options)
{
    RequireSurfaceLevel(model, lod);
    if (options.smoothingSteps < 0 || options.smoothingSteps > MostSmoothingSteps) {
        throw std::domain_error("The number of smoothing steps must lie between 0 and " + std::to_string(MostSmoothingSteps) +
                                ". The value encountered was " + std::to_string(options.smoothingSteps) + ".");
    }
    const SurfaceSize size = SizeOfSurface(model, lod);
    RequireNumbers(size);
    const auto vertexCount = static_cast<std::size_t>(size.vertices);
    FaceMesh mesh;
    mesh.faces.reserve(static_cast<std::size_t>(size.faces));
    const CornersToWorld toWorld(model.AxesRef(), lod);

    if (options.style == SurfaceStyle::Blocky) {
        mesh.vertices.reserve(vertexCount);
        MakeMesh(mesh, model, lod,
                 [&](const Triple& corner, unsigned, unsigned) { mesh.vertices.push_back(toWorld.At(corner)); });
    } else if (options.smoothingSteps == 0) {
        mesh.vertices.reserve(vertexCount);
        MakeMesh(mesh, model, lod, [&](const Triple& corner, unsigned shape, unsigned sheet) {
            mesh.vertices.push_back(toWorld.At(corner, CentreOfFaces(shape, sheet)));
        });
    } else {
        Smoothing smoothing(vertexCount);
        MakeMesh(mesh, model, lod, [&](const Triple& corner, unsigned shape, unsigned sheet) {
            smoothing.AddVertex(corner, CentreOfFaces(shape, sheet));
        });
        for (int step = 0; step < options.smoothingSteps; ++step) smoothing.Step(mesh.faces);
        mesh.vertices = smoothing.ToWorld(toWorld);
    }
    if (options.style == SurfaceStyle::Smooth) mesh.normals = NormalsOf(mesh, toWorld);
    return mesh;
}

} // namespace brix
