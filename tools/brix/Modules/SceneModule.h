// What the program and its part for assimp say to each other, in C: nothing of the C++ runtime passes between them, as a program
// may have its own one inside.
#pragma once

#include <cstddef>

extern "C" {

/// Gets the nine coordinates of a triangle; 0 ends the reading.
typedef int (*BrixTakeTriangle)(void* context, const double* corners);

/// Reads all triangles of a file, each mesh wherever nodes place it. Returns 0, or 1 with the reason as text.
typedef int BrixReadScene(const char* filePath, BrixTakeTriangle take, void* context, char* reason, std::size_t reasonSize);

/// "brix_read_scene"
BrixReadScene brix_read_scene;

/// Each part is made for one version of the program. "brix_module_version"
typedef const char* BrixModuleVersion(void);
BrixModuleVersion brix_module_version;
}
