// Compression as gzip: with zlib, or not at all where the program was made without it.
#pragma once

#include <functional>
#include <iosfwd>

namespace brix::tools {

/// Throws std::runtime_error where this program cannot compress.
void RequireGzip();

/// What `write` puts into its stream goes to another one, compressed. That stream's state tells whether it took everything.
void WriteGzipped(std::ostream& stream, const std::function<void(std::ostream&)>& write);

} // namespace brix::tools
