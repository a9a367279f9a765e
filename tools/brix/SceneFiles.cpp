#include "SceneFiles.h"

#include "LoadedModule.h"
#include "Progress.h"
#include "Text.h"

#include "Modules/SceneModule.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <exception>
#include <stdexcept>

namespace brix::tools {
namespace {

constexpr std::array SceneFormats{
    SceneFormat{".obj", "OBJ", false, "lengths in a unit that it does not name"},
    SceneFormat{".ply", "PLY", false, "lengths in a unit that it does not name"},
    SceneFormat{".gltf", "glTF", true, "lengths in metres"},
    SceneFormat{".glb", "glTF (GLB)", true, "lengths in metres"},
    SceneFormat{".3mf", "3MF", false, "lengths in the unit that it names, else in millimetres"},
};

std::string LowerCase(std::string text)
{
    for (char& letter : text) letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    return text;
}

struct Sink
{
    bool hasYUp;
    SceneImport import{};
    std::exception_ptr failure{};
};

// Called by a library that exceptions must not pass through.
int Take(void* context, const double* corners)
{
    Sink& sink = *static_cast<Sink*>(context);
    try {
        WorldTriangle triangle;
        for (std::size_t i = 0; i < 9; ++i) triangle[i / 3][i % 3] = corners[i];
        if (!std::all_of(corners, corners + 9, [](double number) { return std::isfinite(number); })) {
            ++sink.import.notFinite;
            return 1;
        }
        if (sink.hasYUp)
            for (auto& [x, y, z] : triangle) {
                const double up = y;
                y = 0 - z; // never -0
                z = up;
            }
        sink.import.triangles.push_back(triangle);
        return 1;
    } catch (...) {
        sink.failure = std::current_exception();
        return 0;
    }
}

std::runtime_error NotRead(const std::filesystem::path& filePath, const SceneFormat& format, std::string reason)
{
    while (!reason.empty() && (std::isspace(static_cast<unsigned char>(reason.back())) != 0 || reason.back() == '.'))
        reason.pop_back();
    return std::runtime_error("The file " + Quoted(filePath) + " cannot be read as " + format.name + ": " + reason + ".");
}

} // namespace

const SceneFormat* SceneFormatOf(const std::filesystem::path& filePath)
{
    const std::string ending = LowerCase(filePath.extension().string());
    const auto found = std::find_if(SceneFormats.begin(), SceneFormats.end(),
                                    [&](const SceneFormat& format) { return ending == format.ending; });
    return found == SceneFormats.end() ? nullptr : &*found;
}

SceneImport LoadScene(const std::filesystem::path& filePath, const SceneFormat& format, bool swapYZ)
{
    auto* const read = FindInModule<BrixReadScene>("brix-assimp.so", "brix_read_scene");
    if (read == nullptr)
        throw std::runtime_error("The file " + Quoted(filePath) +
                                 " cannot be read: this brix was made without the library assimp, "
                                 "which reads " +
                                 format.name + " (Debian: libassimp-dev, before brix is built); it reads STL.");
    std::error_code error;
    if (std::filesystem::is_empty(filePath, error)) throw NotRead(filePath, format, "it is empty");

    const Progress progress("reading " + filePath.string());
    Sink sink{format.hasYUp || swapYZ};
    std::array<char, 1000> reason{};
    const int status = read(filePath.string().c_str(), Take, &sink, reason.data(), reason.size());
    if (sink.failure) std::rethrow_exception(sink.failure);
    const std::string text = reason.data();
    if (status != 0 && text.find("bad_alloc") != std::string::npos) throw std::bad_alloc();
    if (status != 0) throw NotRead(filePath, format, text.empty() ? "its content is not understood" : text);
    return std::move(sink.import);
}

} // namespace brix::tools
