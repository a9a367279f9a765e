#include "RandomModels.h"

namespace brix::tests {
namespace {

Triple RandomVoxel(Random& random, const Extents& extents)
{
    Triple voxel{};
    for (std::size_t i = 0; i < 3; ++i) voxel[i] = random.Between(extents.LowerIndices()[i], extents.UpperIndices()[i]);
    return voxel;
}

void FillBox(ReferenceModel& model, const Triple& a, const Triple& b)
{
    ForEachTriple(Lowest(a, b), Highest(a, b), [&](const Triple& voxel) { model.Set(voxel); });
}

void AddBoxes(Random& random, ReferenceModel& model)
{
    for (std::int64_t count = random.Between(1, 5); count > 0; --count) {
        FillBox(model, RandomVoxel(random, model.ExtentsRef()), RandomVoxel(random, model.ExtentsRef()));
    }
}

void AddVerticalRuns(Random& random, ReferenceModel& model)
{
    for (std::int64_t count = random.Between(1, 60); count > 0; --count) {
        const Triple bottom = RandomVoxel(random, model.ExtentsRef());
        FillBox(model, bottom, {bottom[0], bottom[1], RandomVoxel(random, model.ExtentsRef())[2]});
    }
}

// Noise that repeats over several heights, so that stacks have layers of every length.
void AddLayers(Random& random, ReferenceModel& model)
{
    std::int64_t above = model.ExtentsRef().LowerIndices()[2] - 1;
    model.ForEachVoxel([&](const Triple& voxel) {
        if (voxel[2] > above) above += random.Between(1, 12);
        const std::uint64_t noise = Random(static_cast<std::uint64_t>(voxel[0] * 31 + voxel[1] * 4099 + above * 65537)).Bits();
        model.Set(voxel, noise % 4 == 0);
    });
}

} // namespace

std::ostream& operator<<(std::ostream& output, const RandomModel& model)
{
    const Extents& extents = model.reference.ExtentsRef();
    output << "random model " << model.seed << ": level " << extents.VoxelLOD() << " of 0.." << model.reference.FinestLOD()
           << ", vertical level " << extents.AxesRef().VerticalLOD() << ", ";
    for (std::size_t i = 0; i < 3; ++i) output << "[" << extents.LowerIndices()[i] << ", " << extents.UpperIndices()[i] << "] ";
    return output << "with " << model.reference.CountFilled() << " voxels filled";
}

Axes RandomAxes(Random& random)
{
    const std::int64_t verticalLOD = random.Between(0, 5);
    if (random.OneIn(2)) return Axes(40000, {0, 0, 0}, 0, verticalLOD);
    return Axes(0.35, {12.5, -3.75, 100}, static_cast<double>(random.Between(-180, 180)), verticalLOD);
}

Extents RandomExtents(Random& random, const Axes& axes, std::int64_t lod)
{
    const std::array<std::int64_t, 3> periods{16, 16 * (std::int64_t{1} << lod), 0}; // stacks, chunks, and around zero
    Triple lower{};
    Triple upper{};
    const bool isSingleVoxel = random.OneIn(10);
    for (std::size_t i = 0; i < 3; ++i) {
        const std::int64_t period = i == 2 ? 64 : periods[static_cast<std::size_t>(random.Between(0, 2))];
        const std::int64_t size = isSingleVoxel ? 1 : random.Between(1, i < 2 ? 30 : random.OneIn(4) ? 72 : 12);
        lower[i] = random.Between(-2, 2) * period - random.Between(0, size);
        upper[i] = lower[i] + size - 1;
    }
    return Extents(axes, lower, upper, lod);
}

ReferenceModel RandomContent(Random& random, const Extents& extents, std::int64_t finestLOD, std::int64_t lod)
{
    ReferenceModel model(extents, finestLOD, lod);
    const auto noise = [&](std::int64_t oneIn) { return model.Where([&](const Triple&) { return random.OneIn(oneIn); }); };
    const std::int64_t kind = random.Between(0, 9);
    if (1 <= kind && kind <= 3) return noise(std::array{1, 100, 2}[static_cast<std::size_t>(kind - 1)]);
    if (4 <= kind && kind <= 5) AddVerticalRuns(random, model);
    if (6 <= kind && kind <= 7) AddLayers(random, model);
    if (8 <= kind) AddBoxes(random, model);
    return model;
}

RandomModel MakeRandomModel(std::uint64_t seed)
{
    Random random(seed);
    const Axes axes = RandomAxes(random);
    const std::int64_t finestLOD = random.Between(0, 5);
    const Extents extents = RandomExtents(random, axes, finestLOD);
    ReferenceModel reference = RandomContent(random, extents, finestLOD, finestLOD);
    VoxelModel<bool> voxels = MakeModel(reference);
    return {seed, std::move(reference), std::move(voxels)};
}

std::vector<RandomModel> RandomModels(std::uint64_t firstSeed, std::uint64_t count)
{
    std::vector<RandomModel> models;
    models.reserve(count);
    for (std::uint64_t seed = firstSeed; seed < firstSeed + count; ++seed) models.push_back(MakeRandomModel(seed));
    return models;
}

} // namespace brix::tests
