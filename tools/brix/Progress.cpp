#include "Progress.h"

#include "Report.h"
#include "Signals.h"
#include "System.h"

#include <algorithm>
#include <cstdio>

namespace brix::tools {
namespace {

Progress* innermost = nullptr;

bool IsShown()
{
    static const bool isTerminal = IsErrorOutputTerminal();
    return isTerminal && !IsQuiet();
}

} // namespace

Progress::Progress(std::string step)
    : step_(Printable(step)), outer_(innermost), watch_([this](double share) {
          if (!isCounted_) ShowShare(share);
          return !IsInterrupted();
      })
{
    LetInterruptsWait(true);
    innermost = this;
    Show(step_ + " ...");
}

Progress::~Progress()
{
    innermost = outer_;
    LetInterruptsWait(innermost != nullptr);
    Show(outer_ == nullptr ? "" : outer_->step_ + " ...");
}

void Progress::Update(double done, double all)
{
    if (!(all > 0)) return;
    isCounted_ = true;
    ShowShare(std::min(1.0, done / all));
}

void Progress::ShowShare(double share)
{
    const auto now = std::chrono::steady_clock::now();
    if (innermost != this || now - shown_ < std::chrono::milliseconds(100)) return;
    shown_ = now;
    Show(step_ + " " + std::to_string(static_cast<int>(100 * share)) + " %");
}

// Back to the line's start, and clear to its end.
void Progress::Show(const std::string& text) const
{
    if (IsShown()) std::fprintf(stderr, "\r\033[K%s", text.c_str());
}

} // namespace brix::tools
