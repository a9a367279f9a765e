// Pieces of text that random text is put together from.
#pragma once

#include "Random.h"

#include <algorithm>
#include <string_view>

namespace brix::tests {

/// One of the pieces of a text that bars part.
inline std::string_view OneOf(Random& random, std::string_view pieces)
{
    for (std::int64_t i = random.Between(0, std::count(pieces.begin(), pieces.end(), '|')); i > 0; --i)
        pieces.remove_prefix(pieces.find('|') + 1);
    return pieces.substr(0, pieces.find('|'));
}

} // namespace brix::tests
