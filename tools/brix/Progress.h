// Tells a waiting person what the program is doing: one line on standard error, with a percentage where there is one, gone when
// the step is done. Nothing is written when standard error is no terminal or the program is to be quiet, so that logs stay clean.
#pragma once

#include <chrono>
#include <string>

namespace brix::tools {

class Progress
{
public:
    /// Shows the step's name until the end of the object's life. Of objects within each other the inner one is seen.
    explicit Progress(std::string step);
    ~Progress();

    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Shows how much of the step is done, at most ten times a second.
    void Update(double done, double all);

private:
    void Show(const std::string& text) const;

    const std::string step_;
    Progress* const outer_;
    std::chrono::steady_clock::time_point shown_{};
};

} // namespace brix::tools
