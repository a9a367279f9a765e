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

constexpr Triple Origin{};

const std::vector<LevelCase> Cases{
    {"vertical level of detail for a set of axes", false, [](auto&, auto lod) { Axes(1, {}, 0, lod); }},
    {"level of detail for a set of extents", false, [](auto& m, auto lod) { m.ExtentsRef(0).RescaledCopy(lod); }},
    {"finest level of detail in a voxel model", false, [](auto& m, auto lod) { Model(m.ExtentsRef(0), lod); }},
    {"level of detail for voxel model refinement", false, [](auto& m, auto lod) { Refine(m, lod); }},
    {"level of detail for voxel model union", false, [](auto& m, auto lod) { Union({&m}, lod, false); }},
    {"level of detail for voxel model intersect", false, [](auto& m, auto lod) { Intersect({&m}, lod, false); }},
    {"level of detail for voxel model subtraction", false, [](auto& m, auto lod) { Subtract(m, m, lod, false); }},
    {"level of detail for a density map", false, [](auto& m, auto lod) { DensityMap({&m}, {1}, {1}, lod); }},
    {"level of detail for voxel model operations", true, [](auto& m, auto lod) { CountFilled(m, lod); }},
    {"level of detail for voxel model operations", true, [](auto& m, auto lod) { IsEmpty(m, lod); }},
    {"level of detail for voxel model operations", true, [](auto& m, auto lod) { IsFull(m, lod); }},
    {"level of detail for voxel model operations", true, [](auto& m, auto lod) { PropagateLevel(m, lod); }},
    {"level of detail for row data retrieval", true, [](auto& m, auto lod) { RowsAtSliceXIndex(m, 0, lod, false, false); }},
    {"level of detail for row data retrieval", true, [](auto& m, auto lod) { RowsAtSliceYIndex(m, 0, lod, false, false); }},
    {"level of detail for row data retrieval", true, [](auto& m, auto lod) { RowsAtSliceZIndex(m, 0, lod, false, false); }},
    {"level of detail associated with an iterator", true, [](auto& m, auto lod) { StackIterator(m, Origin, lod); }},
    {"level of detail associated with an iterator", true, [](auto& m, auto lod) { StackIterator(m, lod); }},
    {"level of detail associated with an iterator", true, [](auto& m, auto lod) { m.FindVoxel(Origin, lod); }},
    {"level of detail associated with an iterator", true, [](auto& m, auto lod) { ConstVoxelIterator(m, lod); }},
    {"level of detail for voxel cuboidization", true, [](auto& m, auto lod) { CuboidizeVoxelModel(m, lod); }},
    {"level of detail for voxel solidization", true, [](auto& m, auto lod) { SolidizeVoxelModel(m, lod); }},
    {"level of detail for voxel tessellation", true, [](auto& m, auto lod) {
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
