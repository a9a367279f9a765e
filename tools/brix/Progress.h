// Tells a waiting person what the program is doing: one line on standard error, with the percentage that the engine tells, gone
// when the step is done. Nothing is written when standard error is no terminal or the program is to be quiet, so that logs stay
// clean. It is also where an interrupt (Ctrl-C) reaches the engine.
#pragma once

#include <brix/frame/Watch.h>

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

    /// Says how much of the step is done instead of the engine; with nothing in `all` the engine goes on to.
    void Update(double done, double all);

private:
    void ShowShare(double share);
    void Show(const std::string& text) const;

    const std::string step_;
    Progress* const outer_;
    std::chrono::steady_clock::time_point shown_{}; // at most ten times a second
    bool isCounted_ = false;
    const Watch watch_;
};

} // namespace brix::tools
