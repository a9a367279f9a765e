// Every function that takes a level says which levels there are: those of a model, or 0 to 5. The order among other errors stands
// with the function's own tests.
#include "model/PropagateLevel.h"
#include "model/StackIterator.h"
#include "model/VoxelIterator.h"
#include "operations/BasicOperations.h"
#include "operations/DensityMap.h"
#include "operations/SliceRows.h"
#include "operations/SolidOperations.h"
#include "support/Messages.h"
#include "triangles/Cuboidization.h"
#include "triangles/Solidization.h"
#include "triangles/Tessellation.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

namespace brix::tests {
namespace {

using Model = VoxelModel<bool>;

struct LevelCase
{
    const char* phrase;
    bool isOfModel; // the finest level of the model is the limit, not 5
    std::function<void(Model& model, std::int64_t lod)> call;
};

const std::vector<LevelCase> Cases{
    {"vertical level of detail for a set of axes", false,
     [](Model&, std::int64_t lod) {
         Axes(1, {0, 0, 0}, 0, lod);
     }},
    {"level of detail for a set of extents", false, [](Model& m, std::int64_t lod) { m.ExtentsRef(0).RescaledCopy(lod); }},
    {"finest level of detail in a voxel model", false, [](Model& m, std::int64_t lod) { Model(m.ExtentsRef(0), lod); }},
    {"level of detail for voxel model refinement", false, [](Model& m, std::int64_t lod) { Refine(m, lod); }},
    {"level of detail for voxel model union", false, [](Model& m, std::int64_t lod) { Union({&m}, lod, false); }},
    {"level of detail for voxel model intersect", false, [](Model& m, std::int64_t lod) { Intersect({&m}, lod, false); }},
    {"level of detail for voxel model subtraction", false, [](Model& m, std::int64_t lod) { Subtract(m, m, lod, false); }},
    {"level of detail for a density map", false, [](Model& m, std::int64_t lod) { DensityMap({&m}, {1}, {1}, lod); }},
    {"level of detail for voxel model operations", true, [](Model& m, std::int64_t lod) { CountFilled(m, lod); }},
    {"level of detail for voxel model operations", true, [](Model& m, std::int64_t lod) { IsEmpty(m, lod); }},
    {"level of detail for voxel model operations", true, [](Model& m, std::int64_t lod) { IsFull(m, lod); }},
    {"level of detail for voxel model operations", true, [](Model& m, std::int64_t lod) { PropagateLevel(m, lod); }},
    {"level of detail for row data retrieval", true,
     [](Model& m, std::int64_t lod) { RowsAtSliceXIndex(m, 0, lod, false, false); }},
    {"level of detail for row data retrieval", true,
     [](Model& m, std::int64_t lod) { RowsAtSliceYIndex(m, 0, lod, false, false); }},
    {"level of detail for row data retrieval", true,
     [](Model& m, std::int64_t lod) { RowsAtSliceZIndex(m, 0, lod, false, false); }},
    {"level of detail associated with an iterator", true,
     [](Model& m, std::int64_t lod) {
         StackIterator(m, {0, 0, 0}, lod);
     }},
    {"level of detail associated with an iterator", true, [](Model& m, std::int64_t lod) { StackIterator(m, lod); }},
    {"level of detail associated with an iterator", true,
     [](Model& m, std::int64_t lod) {
         m.FindVoxel({0, 0, 0}, lod);
     }},
    {"level of detail associated with an iterator", true, [](Model& m, std::int64_t lod) { ConstVoxelIterator(m, lod); }},
    {"level of detail for voxel cuboidization", true, [](Model& m, std::int64_t lod) { CuboidizeVoxelModel(m, lod); }},
    {"level of detail for voxel solidization", true, [](Model& m, std::int64_t lod) { SolidizeVoxelModel(m, lod); }},
    {"level of detail for voxel tessellation", true, [](Model& m, std::int64_t lod) {
         std::vector<WorldTriangle> triangles;
         TessellateVoxelModel(triangles, m, lod);
     }}};

TEST(Levels, AreRefusedInWholeSentencesWhereTheyDoNotExist)
{
    constexpr std::int64_t lowest = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t highest = std::numeric_limits<std::int64_t>::max();
    Model model(Extents(Axes(1, {0, 0, 0}, 0, 0), {0, 0, 0}, {3, 3, 3}, 2), 2);
    for (const LevelCase& given : Cases) {
        const std::string what = std::string("The ") + given.phrase;
        const std::int64_t finest = given.isOfModel ? 2 : 5;
        for (const std::int64_t lod : {lowest, std::int64_t{-1}, std::int64_t{0}, finest, finest + 1, highest}) {
            const std::string value = "The value encountered was " + std::to_string(lod) + ".";
            const std::string tooFine = given.isOfModel ? " must not exceed the finest level of detail in the voxel model. " +
                                                              value + " The finest level of detail in the voxel model is 2."
                                                        : " must be less than 6. " + value;
            EXPECT_EQ(MessageOf([&] { given.call(model, lod); }), lod < 0         ? what + " cannot be negative. " + value
                                                                  : lod <= finest ? "(nothing was thrown)"
                                                                                  : what + tooFine);
        }
    }
}

} // namespace
} // namespace brix::tests
