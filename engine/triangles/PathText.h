// File paths as they are shown in messages.
#pragma once

#include <filesystem>
#include <string>

namespace brix {

/// A path as one line of valid UTF-8, whatever its bytes (or, on Windows, its UTF-16 units): what is no character becomes U+FFFD,
/// and control characters, which could act on a terminal, are written as \x1b or \u202e.
std::string PathText(const std::filesystem::path& path);

} // namespace brix
