// Density maps against their voxel-by-voxel definition.
#include "operations/DensityMap.h"

#include "operations/SolidOperations.h"
#include "support/Messages.h"
#include "support/RandomCompanions.h"
#include "support/ReferenceOperations.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace brix {
namespace {

using namespace tests;
using Models = std::vector<const VoxelModel<bool>*>;

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
const Axes Frame(1, {0, 0, 0}, 0, 0);

// Random weights of which many are equal, so that sums are met again and again.
std::vector<double> RandomNumbers(Random& random, std::size_t count)
{
    const double huge = random.OneIn(4) ? -Infinity : 1e18;
    const std::array<double, 8> values{0.1, 0.2, 0.3, 1, -0.5, 0, huge, random.OneIn(4) ? Infinity : -2};
    std::vector<double> numbers;
    for (std::size_t i = 0; i < count; ++i) numbers.push_back(values[static_cast<std::size_t>(random.Between(0, 7))]);
    return numbers;
}

TEST(DensityMap, EqualsTheSumsVoxelByVoxel)
{
    for (std::uint64_t seed = 1; seed <= 200; ++seed) {
        Random random(seed);
        std::vector<ReferenceModel> references{MakeFirst(random)};
        for (std::uint64_t i = 0; i < (seed % 20 == 0 ? 8 : seed % 5); ++i) {
            references.push_back(MakeCompanion(random, references.front(), AllPlacements[(seed + i) % AllPlacements.size()]));
        }
        std::vector<VoxelModel<bool>> models;
        for (const ReferenceModel& reference : references) models.push_back(MakeModel(reference));
        Models pointers;
        std::vector<const ReferenceModel*> all;
        for (std::size_t i = 0; i < models.size(); ++i) {
            pointers.push_back(&models[i]);
            all.push_back(&references[i]);
        }
        const std::int64_t lod = LevelNear(random, references.front().FinestLOD(), 1);
        const std::vector<double> weights = RandomNumbers(random, models.size());
        std::vector<double> levels = RandomNumbers(random, 3);
        levels.push_back(std::fmax(weights.front() + weights.back(), 0.0)); // 0 where infinite weights cancel

        const std::vector<VoxelModel<bool>> results = DensityMap(pointers, weights, levels, lod);
        ASSERT_EQ(results.size(), levels.size());
        std::vector<ReferenceModel> parts;
        for (const ReferenceModel* reference : all) parts.push_back(Union(std::vector{reference}, lod, false));
        const auto sum = [&](const Triple& voxel) {
            double total = 0;
            for (std::size_t i = 0; i < parts.size(); ++i) {
                if (parts[i].Value(voxel)) total += weights[i];
            }
            return total;
        };
        const ReferenceModel bounding = Union(all, lod, false);
        for (std::size_t i = 0; i < levels.size(); ++i) {
            ASSERT_EQ(Differences(results[i],
                                  bounding.Where([&](const Triple& voxel) { return levels[i] <= 0 || sum(voxel) >= levels[i]; })),
                      "")
                << "seed " << seed << ", level " << levels[i];
        }
    }
}

TEST(DensityMap, NamesTheArgumentThatItRejects)
{
    const VoxelModel<bool> model(Extents(Frame, {0, 0, 0}, {3, 3, 3}, 2), 2);
    const VoxelModel<bool> other(Extents(Axes(1, {0, 0, 0}, 0, 1), {0, 0, 0}, {3, 3, 3}, 2), 2);
    const auto message = [](const Models& models, const std::vector<double>& weights, const std::vector<double>& levels,
                            std::int64_t lod) { return MessageOf([&] { DensityMap(models, weights, levels, lod); }); };
    EXPECT_EQ(message({}, {1}, {}, -1), "At least one voxel model is required for a density map.");
    EXPECT_EQ(message({&model, &other}, {NaN}, {}, -1),
              "The number of weights for a density map must be equal to the number of voxel models. The number of weights "
              "encountered was 1. The number of voxel models encountered was 2.");
    EXPECT_EQ(message({&model, &other}, {1, NaN}, {}, -1), "At least one level is required for a density map.");
    EXPECT_EQ(message({&model, &other}, {1, NaN}, {NaN}, -1),
              "A weight for a density map must be a number. The value encountered was NaN.");
    EXPECT_EQ(message({&model, &other}, {1, 1}, {1, -NaN}, -1),
              "A level for a density map must be a number. The value encountered was NaN.");
    EXPECT_EQ(message({&model, &other}, {1, 1}, {1}, -1),
              "The level of detail for a density map cannot be negative. The value encountered was -1.");
    EXPECT_EQ(message({&model, nullptr}, {1, 1}, {1}, 6),
              "The level of detail for a density map must be less than 6. The value encountered was 6.");
    EXPECT_EQ(message({&model, &other, nullptr}, {1, 1, 1}, {1}, 5), "No voxel model to be merged can be null.");
    EXPECT_EQ(message({&model, &other}, {1, 1}, {1}, 5), "The axes must be the same for all voxel models to be merged.");
    EXPECT_EQ(message({&model, &model}, {Infinity, -Infinity}, {-Infinity}, 0), "(nothing was thrown)");
}

} // namespace
} // namespace brix
