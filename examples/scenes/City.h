// A town for large examples and benchmarks: turned buildings of many sizes on a grid of streets, on hilly ground made of small
// triangles. The same seed gives the same triangles on every machine: all corners lie on multiples of 1/1024 m, which also
// survive a binary STL file unchanged.
#pragma once

#include <brix/triangles/Triangle.h>

#include <cstdint>
#include <vector>

namespace brix::scenes {

struct CityOptions
{
    std::uint64_t seed = 1;
    /// Approximate number of triangles; half of them (within a building's worth) are the ground. At least about 6000 are made.
    std::int64_t triangles = 100'000;
};

/// The town in metres, Z up, centred on the origin, lots of 36 m. Buildings come first, each made of closed boxes; the ground, an
/// open surface within 2 m of height 0 or below, comes last.
std::vector<WorldTriangle> MakeCity(const CityOptions& options = {});

} // namespace brix::scenes
