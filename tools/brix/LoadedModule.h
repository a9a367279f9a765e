// Parts of the program in libraries of their own: those that need large libraries, which would slow every start of the program
// and which not every machine has. They lie beside the program, or in lib/brix where it is installed.
#pragma once

#include <string>

namespace brix::tools {

/// A function of a part by its name, nullptr where the part is not there. Throws std::runtime_error with the system's reason when
/// it is there but cannot be loaded, or was made for another version.
void* FindInModule(const std::string& module, const std::string& function);

/// The same with its type.
template <class Function> Function* FindInModule(const std::string& module, const std::string& function)
{
    return reinterpret_cast<Function*>(FindInModule(module, function));
}

} // namespace brix::tools
