// Where there is no zlib.
#include "Gzip.h"

#include <stdexcept>

namespace brix::tools {

void RequireGzip()
{
    throw std::runtime_error(
        "This brix cannot compress, as it was made without the library zlib (Debian: zlib1g-dev, before brix "
        "is built); leave --gzip out.");
}

void WriteGzipped(std::ostream&, const std::function<void(std::ostream&)>&) { RequireGzip(); }

} // namespace brix::tools
