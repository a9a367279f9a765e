// Tells a waiting person what the program is doing: one line on standard error, gone when the step is done. Nothing is written when
// standard error is not a terminal, so that logs and pipes stay clean.
#pragma once

#include <string>

namespace brix::tools {

class Progress
{
public:
    /// Shows the step's name until the end of the object's life.
    explicit Progress(const std::string& step);
    ~Progress();

    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
};

} // namespace brix::tools
