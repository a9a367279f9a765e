#include "MeshReport.h"

#include "../frame/Product.h"
#include "../frame/WatchedLoop.h"
#include "TextNumbers.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <memory>
#include <numeric>
#include <stdexcept>

namespace brix {
namespace {

using Point = std::array<double, 3>;
// A point by the bits of its coordinates, so that what is not a number equals itself; 0 has those of 0, never those of -0.
using PointBits = std::array<std::uint64_t, 3>;
using VertexTriple = std::array<std::uint32_t, 3>;

// Half-edges are counted in 32 bits, one of which tells the way.
constexpr std::size_t mostTriangles = (std::size_t{1} << 31) / 3;

/// The vertices by their coordinates: a table of their hashes' upper halves and indices, of which at most half are taken,
/// searched from the place that the hash names. Memory takes longer to answer than anything else here: upper halves that differ
/// tell without the vertex that it is another one, and the table is asked to be at hand some vertices ahead.
class VertexTable
{
public:
    static constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();

    /// Closed surfaces have half as many vertices as triangles: the table is large enough for those.
    explicit VertexTable(std::size_t triangleCount) : slots_(std::bit_ceil(std::max<std::size_t>(triangleCount, 8)), none)
    {
        vertices_.reserve(triangleCount / 2 + 4);
    }

    std::size_t Count() const { return vertices_.size(); }

    void Bound(MeshReport& report) const
    {
        report.lower = report.upper = std::bit_cast<Point>(vertices_.front());
        for (const PointBits& vertex : vertices_)
            for (std::size_t axis = 0; axis < 3; ++axis) {
                report.lower[axis] = std::min(report.lower[axis], std::bit_cast<double>(vertex[axis]));
                report.upper[axis] = std::max(report.upper[axis], std::bit_cast<double>(vertex[axis]));
            }
    }

    // Three rounds of a multiplication that moves differences up, and a shift that moves them down.
    static std::uint64_t HashOf(const PointBits& point)
    {
        std::uint64_t hash = 0;
        for (const std::uint64_t coordinate : point) {
            hash = (hash ^ coordinate) * 0x9E3779B97F4A7C15U;
            hash ^= hash >> 32;
        }
        return hash;
    }

    /// The index of a vertex that was met lately, as nearly all were where triangles follow their surface. Otherwise `none`.
    std::uint32_t Recent(const PointBits& point, std::uint64_t hash) const
    {
        const std::uint64_t recent = recent_[hash >> recentShift];
        if (Holds(recent, point, hash)) return IndexIn(recent);
        __builtin_prefetch(&slots_[hash & (slots_.size() - 1)]);
        return none;
    }

    std::uint32_t IndexOf(const PointBits& point, std::uint64_t hash)
    {
        const std::uint64_t slot = Find(point, hash);
        recent_[hash >> recentShift] = slot;
        return IndexIn(slot);
    }

private:
    static constexpr int recentShift = 64 - 14;

    static std::uint32_t IndexIn(std::uint64_t slot) { return static_cast<std::uint32_t>(slot); }

    bool Holds(std::uint64_t slot, const PointBits& point, std::uint64_t hash) const
    {
        if (slot >> 32 != hash >> 32 || IndexIn(slot) == none) return false;
        const PointBits& vertex = vertices_[IndexIn(slot)];
        return ((vertex[0] ^ point[0]) | (vertex[1] ^ point[1]) | (vertex[2] ^ point[2])) == 0;
    }

    std::uint64_t Find(const PointBits& point, std::uint64_t hash)
    {
        const std::size_t mask = slots_.size() - 1;
        std::size_t place = hash & mask;
        for (; IndexIn(slots_[place]) != none; place = (place + 1) & mask)
            if (Holds(slots_[place], point, hash)) return slots_[place];

        const std::uint64_t slot = (hash >> 32 << 32) | vertices_.size();
        vertices_.push_back(point);
        slots_[place] = slot;
        if (2 * vertices_.size() > slots_.size()) Grow();
        return slot;
    }

    void Grow()
    {
        std::vector<std::uint64_t> larger(2 * slots_.size(), none);
        const std::size_t mask = larger.size() - 1;
        for (std::size_t i = 0; i < vertices_.size(); ++i) {
            const std::uint64_t hash = HashOf(vertices_[i]);
            std::size_t place = hash & mask;
            while (IndexIn(larger[place]) != none) place = (place + 1) & mask;
            larger[place] = (hash >> 32 << 32) | i;
        }
        slots_.swap(larger);
    }

    std::vector<std::uint64_t> slots_;
    std::vector<PointBits> vertices_;
    std::vector<std::uint64_t> recent_ = std::vector<std::uint64_t>(std::size_t{1} << (64 - recentShift), none);
};

PointBits BitsOf(const Point& p)
{
    const auto bits = [](double coordinate) { return std::bit_cast<std::uint64_t>(coordinate + 0.0); };
    return {bits(p[0]), bits(p[1]), bits(p[2])};
}

/// Six times the volume of the prism between a triangle and the plane at a height. The prisms of a closed surface add up to what
/// it encloses, as those of the far side take away what those of the near side have beyond.
double SixfoldPrism(const WorldTriangle& triangle, double height)
{
    const auto& [a, b, c] = triangle;
    const double twiceArea = Product(b[0] - a[0], c[1] - a[1]) - Product(c[0] - a[0], b[1] - a[1]);
    return Product((a[2] - height) + (b[2] - height) + (c[2] - height), twiceArea);
}

constexpr std::size_t trianglesAtOnce = 32;

/// One pass over all triangles: their vertices, and the volume.
std::vector<VertexTriple> Weld(std::span<const WorldTriangle> triangles, MeshReport& report)
{
    std::vector<VertexTriple> indexed(triangles.size());
    VertexTable table(triangles.size());
    WatchedLoop loop(triangles.size());
    double sixfoldVolume = 0;
    const double height = triangles.front().front()[2];
    for (std::size_t first = 0; first < triangles.size(); first += trianglesAtOnce) {
        const std::size_t count = std::min(trianglesAtOnce, triangles.size() - first);
        std::array<std::array<PointBits, 3>, trianglesAtOnce> corners;
        std::array<std::array<std::uint64_t, 3>, trianglesAtOnce> hashes;
        for (std::size_t i = 0; i < count; ++i)
            for (std::size_t corner = 0; corner < 3; ++corner) {
                corners[i][corner] = BitsOf(triangles[first + i][corner]);
                hashes[i][corner] = VertexTable::HashOf(corners[i][corner]);
                indexed[first + i][corner] = table.Recent(corners[i][corner], hashes[i][corner]);
            }
        for (std::size_t i = 0; i < count; ++i) {
            sixfoldVolume += SixfoldPrism(triangles[first + i], height);
            for (std::size_t corner = 0; corner < 3; ++corner)
                if (std::uint32_t& index = indexed[first + i][corner]; index == VertexTable::none)
                    index = table.IndexOf(corners[i][corner], hashes[i][corner]);
        }
        loop.Step(count);
    }
    table.Bound(report);
    report.vertices = table.Count();
    report.signedVolume = sixfoldVolume / 6;
    return indexed;
}

bool HasThreeVertices(const VertexTriple& v) { return v[0] != v[1] && v[1] != v[2] && v[2] != v[0]; }

/// A triangle's way along an edge, kept with the edge's lower vertex.
struct HalfEdge
{
    std::uint32_t upperAndWay; // twice the edge's upper vertex, and 1 where the triangle runs down to the lower one
    std::uint32_t triangle;

    std::uint32_t Upper() const { return upperAndWay >> 1; }
    bool RunsDown() const { return (upperAndWay & 1) != 0; }
};

template <class Visit> void ForEachHalfEdge(std::span<const VertexTriple> triangles, const Visit& visit)
{
    for (std::size_t i = 0; i < triangles.size(); ++i) {
        const VertexTriple& v = triangles[i];
        if (!HasThreeVertices(v)) continue;
        for (std::size_t corner = 0; corner < 3; ++corner) {
            const std::uint32_t from = v[corner];
            const std::uint32_t to = v[corner == 2 ? 0 : corner + 1];
            const bool runsDown = to < from;
            visit(std::min(from, to), HalfEdge{2 * std::max(from, to) + std::uint32_t{runsDown}, static_cast<std::uint32_t>(i)});
        }
    }
}

/// All half-edges, those of a lower vertex side by side, in the order of the triangles.
struct Buckets
{
    Buckets(std::span<const VertexTriple> triangles, std::size_t vertexCount) : ends(vertexCount + 1)
    {
        ForEachHalfEdge(triangles, [&](std::uint32_t lower, const HalfEdge&) { ++ends[lower + 1]; });
        std::partial_sum(ends.begin(), ends.end(), ends.begin());
        halfEdges = std::make_unique_for_overwrite<HalfEdge[]>(ends.back());
        ForEachHalfEdge(triangles, [&](std::uint32_t lower, const HalfEdge& edge) { halfEdges[ends[lower]++] = edge; });
    }

    std::vector<std::uint32_t> ends; // of the bucket of each vertex; it begins where the one before ends
    std::unique_ptr<HalfEdge[]> halfEdges;
};

/// Triangles that edges connect, as trees whose roots stand for shells.
class Shells
{
public:
    explicit Shells(std::size_t triangleCount) : parents_(triangleCount) { std::iota(parents_.begin(), parents_.end(), 0U); }

    /// Whether the two belonged to different ones so far.
    bool Join(std::uint32_t a, std::uint32_t b)
    {
        a = RootOf(a);
        b = RootOf(b);
        parents_[std::max(a, b)] = std::min(a, b);
        return a != b;
    }

private:
    std::uint32_t RootOf(std::uint32_t triangle)
    {
        while (parents_[triangle] != triangle) triangle = parents_[triangle] = parents_[parents_[triangle]];
        return triangle;
    }

    std::vector<std::uint32_t> parents_;
};

class EdgeCount
{
public:
    EdgeCount(std::span<const VertexTriple> triangles, MeshReport& report)
        : triangles_(triangles), report_(report), shells_(triangles.size())
    {}

    void Run()
    {
        report_.shells = static_cast<std::uint64_t>(std::count_if(triangles_.begin(), triangles_.end(), HasThreeVertices));
        Buckets buckets(triangles_, report_.vertices);
        WatchedLoop loop(report_.vertices);
        std::size_t begin = 0;
        for (std::uint32_t lower = 0; lower < report_.vertices; ++lower) {
            CountAt(lower, {&buckets.halfEdges[begin], buckets.ends[lower] - begin});
            begin = buckets.ends[lower];
            loop.Step();
        }
        report_.isClosed = report_.edges > 0 && !hasOddEdge_;
    }

private:
    void CountAt(std::uint32_t lower, std::span<HalfEdge> bucket)
    {
        Sort(bucket);
        for (std::size_t first = 0, end = 0; first < bucket.size(); first = end) {
            while (end < bucket.size() && bucket[end].Upper() == bucket[first].Upper()) ++end;
            CountEdge(lower, bucket.subspan(first, end - first));
        }
    }

    // Nearly all vertices have few edges, for which the plainest way is the fastest.
    static void Sort(std::span<HalfEdge> bucket)
    {
        const auto isBefore = [](const HalfEdge& a, const HalfEdge& b) { return a.Upper() < b.Upper(); };
        if (bucket.size() > 32) return WatchedSort(bucket.begin(), bucket.end(), isBefore);
        for (std::size_t i = 1; i < bucket.size(); ++i) {
            const HalfEdge edge = bucket[i];
            std::size_t place = i;
            for (; place > 0 && isBefore(edge, bucket[place - 1]); --place) bucket[place] = bucket[place - 1];
            bucket[place] = edge;
        }
    }

    void CountEdge(std::uint32_t lower, std::span<const HalfEdge> edge)
    {
        ++report_.edges;
        report_.openEdges += edge.size() == 1;
        report_.crowdedEdges += edge.size() > 2;
        report_.reversedEdges += edge.size() == 2 && edge[0].RunsDown() == edge[1].RunsDown();
        hasOddEdge_ = hasOddEdge_ || edge.size() % 2 != 0;
        if (edge.size() == 1) return;
        if (edge.size() == 2) return CountPair(lower, edge[0], edge[1]);
        for (const HalfEdge& other : edge.subspan(1)) report_.shells -= shells_.Join(edge[0].triangle, other.triangle);
        CountDuplicates(lower, edge);
    }

    std::uint32_t Third(std::uint32_t lower, const HalfEdge& half) const
    {
        const VertexTriple& v = triangles_[half.triangle];
        return v[0] ^ v[1] ^ v[2] ^ lower ^ half.Upper();
    }

    void CountPair(std::uint32_t lower, const HalfEdge& a, const HalfEdge& b)
    {
        report_.shells -= shells_.Join(a.triangle, b.triangle);
        const std::uint32_t third = Third(lower, a);
        report_.duplicateTriangles += third > a.Upper() && third == Third(lower, b);
    }

    // Triangles are compared at the edge of their two lower vertices only.
    void CountDuplicates(std::uint32_t lower, std::span<const HalfEdge> edge)
    {
        thirds_.clear();
        for (const HalfEdge& half : edge) {
            const std::uint32_t third = Third(lower, half);
            if (third > half.Upper()) thirds_.push_back(third);
        }
        if (thirds_.size() < 2) return;
        std::sort(thirds_.begin(), thirds_.end());
        for (std::size_t i = 1; i < thirds_.size(); ++i) report_.duplicateTriangles += thirds_[i] == thirds_[i - 1];
    }

    std::span<const VertexTriple> triangles_;
    MeshReport& report_;
    Shells shells_;
    std::vector<std::uint32_t> thirds_;
    bool hasOddEdge_ = false;
};

std::string NumberText(double number)
{
    std::array<char, maxNumberLength> text{};
    return {text.data(), WriteNumber(text.data(), number)};
}

} // namespace

bool MeshReport::IsSolid() const
{
    return isClosed && crowdedEdges == 0 && reversedEdges == 0 && duplicateTriangles == 0 && signedVolume > 0;
}

MeshReport CountMesh(std::span<const WorldTriangle> triangles)
{
    if (triangles.size() > mostTriangles)
        throw std::length_error("The edges of at most " + std::to_string(mostTriangles) +
                                " triangles can be counted. The number encountered was " + std::to_string(triangles.size()) +
                                ".");
    MeshReport report;
    if (triangles.empty()) return report;
    const std::vector<VertexTriple> indexed = Weld(triangles, report);
    EdgeCount(indexed, report).Run();
    return report;
}

UnitGuess GuessUnit(double longestSide)
{
    if (!(longestSide > 0)) return {"", "It has no size."};
    const std::string side = "Its longest side is " + NumberText(longestSide);
    const std::string inMetres = NumberText(longestSide / 1000) + " m";
    if (longestSide < 1) return {"m", side + ": too small to be made in millimetres, but a part or a model in metres."};
    if (longestSide < 10) return {"", side + ": a room in metres as well as a part in centimetres or inches."};
    if (longestSide < 1000)
        return {"mm", side + ": a part of " + inMetres + " in millimetres, which most files are in; in metres it is a building."};
    if (longestSide < 1e6) return {"mm", side + ": a machine or a building of " + inMetres + " in millimetres."};
    return {"", side + ": larger than anything in millimetres; terrain in metres, perhaps."};
}

} // namespace brix
