#include "LoadedModule.h"

#include "System.h"
#include "Text.h"

#include "Modules/SceneModule.h"

#include <stdexcept>

namespace brix::tools {
namespace {

namespace fs = std::filesystem;

fs::path Find(const std::string& module)
{
    const fs::path folder = ProgramFolder();
    std::error_code error;
    for (const fs::path& place : {folder / module, folder / ".." / BRIX_MODULES / module})
        if (!folder.empty() && fs::exists(place, error)) return place;
    return {};
}

} // namespace

void* FindInModule(const std::string& module, const std::string& function)
{
    const fs::path place = Find(module);
    if (place.empty()) return nullptr;
    auto* const version = reinterpret_cast<BrixModuleVersion*>(FindFunction(place, "brix_module_version"));
    void* const found = FindFunction(place, function);
    if (version == nullptr || found == nullptr)
        throw std::runtime_error("Failed to load " + Quoted(place) + ": " + LoadingReason() + ".");
    if (version() != std::string(BRIX_VERSION))
        throw std::runtime_error(Quoted(place) + " belongs to version " + version() + "; this is brix " BRIX_VERSION ".");
    return found;
}

} // namespace brix::tools
