// File paths, and words of files, as they are shown in messages.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace brix {

/// A path as one line of valid UTF-8, whatever its bytes (or, on Windows, its UTF-16 units): what is no character becomes U+FFFD,
/// and control characters, which could act on a terminal, are written as \x1b or \u202e.
std::string PathText(const std::filesystem::path& path);

/// The same of bytes that should be UTF-8, of which the first `most` are looked at; "..." stands for those that follow.
std::string LineText(std::string_view bytes, std::size_t most = 200);

} // namespace brix
