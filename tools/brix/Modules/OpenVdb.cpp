// The part of the program that writes .vdb files with OpenVDB. A library of its own, as the program would start 80 ms later with
// it; and the only source that reads OpenVDB's headers.
#include "SceneModule.h"
#include "VdbModule.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wall"
#pragma GCC diagnostic ignored "-Wextra"
#include <openvdb/io/Archive.h>
#include <openvdb/openvdb.h>
#include <openvdb/tools/Prune.h>
#pragma GCC diagnostic pop

#include <cstring>
#include <exception>
#include <sstream>
#include <string>

namespace {

using Tree = openvdb::FloatTree;

// Also writes to streams, with the offsets by which readers find grids and their parts.
class SeekableArchive : public openvdb::io::Archive
{
public:
    openvdb::io::Archive::Ptr copy() const override { return std::make_shared<SeekableArchive>(*this); }
    void Write(std::ostream& stream, const openvdb::GridCPtrVec& grids) const { Archive::write(stream, grids, true); }
};

void Add(void* grid, const BrixVdbBlock* block)
{
    Tree& tree = *static_cast<Tree*>(grid);
    const openvdb::Coord place(block->x, block->y, block->z);
    bool isFull = true;
    for (const std::uint64_t word : block->filled) isFull = isFull && word == ~std::uint64_t{0};
    if (isFull) return tree.addTile(1, place, 1.0F, true);
    auto* const leaf = new Tree::LeafNodeType(place, 0.0F, false);
    for (openvdb::Index x = 0; x < 8; ++x)
        for (openvdb::Index i = 0; i < 64; ++i)
            if ((block->filled[x] >> i & 1) != 0) leaf->setValueOn(64 * x + i, 1.0F);
    tree.addLeaf(leaf);
}

openvdb::math::Transform::Ptr TransformOf(const double* w)
{
    return openvdb::math::Transform::createLinearTransform(
        openvdb::Mat4d(w[3], w[4], w[5], 0.0, w[6], w[7], w[8], 0.0, w[9], w[10], w[11], 0.0, w[0], w[1], w[2], 1.0));
}

bool Write(const double* toWorld, BrixGiveBlocks give, BrixTakeBytes take, void* context)
{
    openvdb::initialize();
    const openvdb::FloatGrid::Ptr grid = openvdb::FloatGrid::create(0.0F);
    if (give(context, Add, &grid->tree()) == 0) return false;
    openvdb::tools::prune(grid->tree(), 0.0F, false);
    grid->setName("density");
    grid->setGridClass(openvdb::GRID_FOG_VOLUME);
    grid->setSaveFloatAsHalf(true); // 0 and 1 stay what they are
    grid->setTransform(TransformOf(toWorld));
    std::ostringstream file;
    SeekableArchive().Write(file, {grid});
    const std::string_view bytes = file.view();
    return take(context, bytes.data(), bytes.size()) != 0;
}

} // namespace

extern "C" {

const char* brix_module_version(void) { return BRIX_VERSION; }

int brix_write_vdb(const double* toWorld, BrixGiveBlocks give, BrixTakeBytes take, void* context, char* reason,
                   std::size_t reasonSize)
{
    const auto fail = [&](const char* text) {
        std::strncpy(reason, text, reasonSize - 1);
        reason[reasonSize - 1] = '\0';
        return 1;
    };
    try {
        return Write(toWorld, give, take, context) ? 0 : fail("");
    } catch (const std::exception& error) {
        return fail(error.what());
    } catch (...) {
        return fail("unknown error");
    }
}
}
