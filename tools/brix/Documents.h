// What the parser knows, for other readers: a manual page, and completion of command lines for three shells. They are made when
// the program is built (`brix --document KIND`), so that none of them can tell other commands and options than the program has.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace brix::tools {

/// `kind`: man, bash, zsh or fish. Throws UsageError for others.
std::string MakeDocument(const CLI::App& program, const std::string& kind);

} // namespace brix::tools
