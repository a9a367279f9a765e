#include "Progress.h"

#include <cstdio>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace brix::tools {
namespace {

bool IsErrorTerminal()
{
#ifdef _WIN32
    static const bool isTerminal = _isatty(_fileno(stderr)) != 0;
#else
    static const bool isTerminal = isatty(STDERR_FILENO) != 0;
#endif
    return isTerminal;
}

// Back to the line's start, and clear to its end.
void RewriteLine(const std::string& text)
{
    if (IsErrorTerminal()) std::fprintf(stderr, "\r\033[K%s", text.c_str());
}

} // namespace

Progress::Progress(const std::string& step) { RewriteLine(step + " ..."); }

Progress::~Progress() { RewriteLine(""); }

} // namespace brix::tools
