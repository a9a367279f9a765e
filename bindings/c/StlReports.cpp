// STL files with reports.
#include "Objects.h"

#include <string>

using namespace brix;
using namespace brix::capi;

namespace {

class ImportedTriangles : public brix_list
{
public:
    explicit ImportedTriangles(std::shared_ptr<const StlImport> import) : import_(std::move(import)) {}

    std::int64_t Size() const override { return std::ssize(import_->triangles); }
    std::int64_t Width() const override { return 9; }

    void Copy(std::int64_t firstItem, std::int64_t itemCount, double* destination) const override
    {
        const auto count = static_cast<std::size_t>(itemCount);
        std::memcpy(destination, &import_->triangles[static_cast<std::size_t>(firstItem)], count * sizeof(WorldTriangle));
    }

private:
    std::shared_ptr<const StlImport> import_;
};

StlReadOptions OptionsOf(std::int32_t swapYZ, std::int32_t dropDegenerate, std::int32_t countMesh, std::int64_t mostListed)
{
    if (mostListed < 0)
        throw std::domain_error("The number of findings to be listed cannot be negative. The value encountered was " +
                                std::to_string(mostListed) + ".");
    return {swapYZ != 0, dropDegenerate != 0, countMesh != 0, static_cast<std::size_t>(mostListed), "data"};
}

void MakeStl(brix_stl** result, StlImport&& import) { Make(result, std::make_shared<const StlImport>(std::move(import))); }

template <class Item> const Item& ListedItem(const std::vector<Item>& items, std::int64_t index, const char* what)
{
    if (index >= 0 && index < std::ssize(items)) return items[static_cast<std::size_t>(index)];
    throw std::domain_error("The index of a listed " + std::string(what) + " must lie between 0 and " +
                            std::to_string(std::ssize(items) - 1) + ". The value encountered was " + std::to_string(index) + ".");
}

const StlFinding& FindingAt(const StlReport& report, std::int64_t index) { return ListedItem(report.findings, index, "finding"); }
const StlSolid& SolidAt(const StlReport& report, std::int64_t index) { return ListedItem(report.solids, index, "solid"); }

std::domain_error Unknown(const char* what, std::int32_t value)
{
    return std::domain_error("There is no " + std::string(what) + " of an STL file with the number " + std::to_string(value) +
                             ".");
}

MeshReport MeshOf(const StlReport& report) { return report.mesh.value_or(MeshReport{}); }

std::uint64_t NumberOf(const StlReport& r, std::int32_t number, std::int64_t index)
{
    switch (number) {
    case BRIX_STL_IS_SOUND:
        return r.IsSound();
    case BRIX_STL_IS_BINARY:
        return r.variant == StlVariant::Binary;
    case BRIX_STL_BYTES:
        return r.bytes;
    case BRIX_STL_ANNOUNCED:
        return r.announced.value_or(static_cast<std::uint64_t>(-1));
    case BRIX_STL_FOUND:
        return r.found;
    case BRIX_STL_READ:
        return r.read;
    case BRIX_STL_INCOMPLETE:
        return r.incomplete;
    case BRIX_STL_NOT_FINITE:
        return r.notFinite;
    case BRIX_STL_DEGENERATE:
        return r.degenerate;
    case BRIX_STL_BYTES_LEFT:
        return r.bytesLeft;
    case BRIX_STL_FINDINGS:
        return r.findingCount;
    case BRIX_STL_FINDINGS_LISTED:
        return r.findings.size();
    case BRIX_STL_GUESSES:
        return r.guesses;
    case BRIX_STL_DROPS:
        return r.drops;
    case BRIX_STL_SOLIDS:
        return r.solidCount;
    case BRIX_STL_SOLIDS_LISTED:
        return r.solids.size();
    case BRIX_STL_HAS_MESH:
        return r.mesh.has_value();
    case BRIX_STL_VERTICES:
        return MeshOf(r).vertices;
    case BRIX_STL_EDGES:
        return MeshOf(r).edges;
    case BRIX_STL_OPEN_EDGES:
        return MeshOf(r).openEdges;
    case BRIX_STL_CROWDED_EDGES:
        return MeshOf(r).crowdedEdges;
    case BRIX_STL_REVERSED_EDGES:
        return MeshOf(r).reversedEdges;
    case BRIX_STL_DUPLICATE_TRIANGLES:
        return MeshOf(r).duplicateTriangles;
    case BRIX_STL_SHELLS:
        return MeshOf(r).shells;
    case BRIX_STL_IS_CLOSED:
        return MeshOf(r).isClosed;
    case BRIX_STL_FINDING_PLACE:
        return FindingAt(r, index).place;
    case BRIX_STL_FINDING_EFFECT:
        return static_cast<std::uint64_t>(FindingAt(r, index).effect);
    case BRIX_STL_SOLID_TRIANGLES:
        return SolidAt(r, index).triangles;
    default:
        throw Unknown("number", number);
    }
}

UnitGuess UnitOf(const StlReport& report)
{
    if (!report.mesh) return {};
    double longest = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) longest = std::max(longest, report.mesh->upper[axis] - report.mesh->lower[axis]);
    return GuessUnit(longest);
}

std::string TextOf(const StlReport& report, std::int32_t text, std::int64_t index)
{
    switch (text) {
    case BRIX_STL_HEADER:
        return report.header;
    case BRIX_STL_UNIT:
        return UnitOf(report).unit;
    case BRIX_STL_UNIT_REASON:
        return UnitOf(report).reason;
    case BRIX_STL_FINDING_SENTENCE:
        return FindingAt(report, index).sentence;
    case BRIX_STL_SOLID_NAME:
        return SolidAt(report, index).name;
    default:
        throw Unknown("text", text);
    }
}

} // namespace

std::int32_t brix_read_stl(const char* path, std::int64_t path_length, std::int32_t swap_yz, std::int32_t drop_degenerate,
                           std::int32_t count_mesh, std::int64_t most_listed, brix_stl** result, brix_error* error)
{
    return Guarded(error, {result}, "the triangles of the STL file", [&] {
        const std::filesystem::path filePath = PathAt(path, path_length);
        MakeStl(result, ReadStl(filePath, OptionsOf(swap_yz, drop_degenerate, count_mesh, most_listed)));
    });
}

std::int32_t brix_read_stl_bytes(const std::uint8_t* bytes, std::int64_t byte_count, std::int32_t swap_yz,
                                 std::int32_t drop_degenerate, std::int32_t count_mesh, std::int64_t most_listed,
                                 brix_stl** result, brix_error* error)
{
    return Guarded(error, {result}, "the triangles of the STL file", [&] {
        RequireItems(bytes, byte_count, 1, "bytes");
        const std::span<const std::uint8_t> file(bytes, static_cast<std::size_t>(byte_count));
        MakeStl(result, ReadStl(file, OptionsOf(swap_yz, drop_degenerate, count_mesh, most_listed)));
    });
}

void brix_stl_free(brix_stl* stl) { delete stl; }

std::int32_t brix_stl_triangles(const brix_stl* stl, brix_list** result, brix_error* error)
{
    return Guarded(error, {stl, result}, [&] { *result = new ImportedTriangles(stl->import); });
}

std::int32_t brix_stl_number_of(const brix_stl* stl, std::int32_t number, std::int64_t index, std::int64_t* result,
                                brix_error* error)
{
    return Guarded(error, {stl, result},
                   [&] { *result = static_cast<std::int64_t>(NumberOf(stl->import->report, number, index)); });
}

std::int32_t brix_stl_text_of(const brix_stl* stl, std::int32_t text, std::int64_t index, brix_bytes** result, brix_error* error)
{
    return Guarded(error, {stl, result}, [&] {
        const std::string given = TextOf(stl->import->report, text, index);
        Make(result, std::vector<std::uint8_t>(given.begin(), given.end()));
    });
}

std::int32_t brix_stl_bounds(const brix_stl* stl, double* lower_3, double* upper_3, double* signed_volume, brix_error* error)
{
    return Guarded(error, {stl, lower_3, upper_3, signed_volume}, [&] {
        const MeshReport mesh = MeshOf(stl->import->report);
        CopyThree(mesh.lower, lower_3);
        CopyThree(mesh.upper, upper_3);
        *signed_volume = mesh.signedVolume;
    });
}
