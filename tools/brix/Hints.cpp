#include "Hints.h"

#include <array>
#include <string_view>

namespace brix::tools {
namespace {

struct Hint
{
    std::string_view phrase; // of the engine's sentence
    std::string_view help;
};

constexpr std::array Hints{
    Hint{"extent in the ", "The model lies too far from the grid's origin, counted in voxels: choose a larger --voxel (or fewer "
                           "--voxels, a larger --width), or an --origin beside it."},
    Hint{"agent diameter", "Choose a larger --diameter, or a smaller --voxel."},
    Hint{"agent height", "Choose a larger --height, or a smaller --voxel or a higher --vertical-lod."},
    Hint{"finest level of detail", "It is set by --lod."},
    Hint{"vertical level of detail", "It is set by --vertical-lod, or by --lod without that."},
};

} // namespace

std::string WithHint(const std::string& sentence)
{
    for (const auto& [phrase, help] : Hints)
        if (sentence.find(phrase) != std::string::npos) return sentence + ' ' + std::string(help);
    return sentence;
}

} // namespace brix::tools
