// Some sentences of the engine speak of what the program's user sets by an option. This table says by which.
#pragma once

#include <string>

namespace brix::tools {

/// The sentence, with what helps after it where that is known.
std::string WithHint(const std::string& sentence);

} // namespace brix::tools
