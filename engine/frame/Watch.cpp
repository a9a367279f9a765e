#include "Watch.h"

#include "WatchedLoop.h"

#include <utility>

namespace brix {
namespace {

// The innermost one of a thread. It is all that the engine keeps between calls, and only as long as the host's watch lives.
constinit thread_local Watch* innermost = nullptr;

// What a loop takes of what is still to be done: most of it, as the loop that takes longest mostly stands first.
constexpr double ShareOfLoop = 0.75;

// While the host answers, its own operations are not watched.
class Unwatched
{
public:
    Unwatched() { innermost = nullptr; }
    Unwatched(const Unwatched&) = delete;
    Unwatched& operator=(const Unwatched&) = delete;
    ~Unwatched() { innermost = watch_; }

private:
    Watch* watch_ = innermost;
};

} // namespace

Watch::Watch(std::function<bool(double share)> goesOn, Duration pause)
    : goesOn_(std::move(goesOn)), pause_(pause), lastAsked_(std::chrono::steady_clock::now() - pause), outer_(innermost)
{
    if (outer_ != nullptr) {
        outerShare_ = outer_->share_;
        outerEnd_ = outerShare_ + ShareOfLoop * (outer_->end_ - outerShare_);
    }
    innermost = this;
}

Watch::~Watch()
{
    Watch** watch = &innermost;
    while (*watch != nullptr && *watch != this) watch = &(*watch)->outer_;
    if (*watch == this) *watch = outer_;
}

void Watch::BeginPart(double end)
{
    share_ = end_ < 1 ? end_ : share_;
    end_ = std::clamp(end, share_, 1.0);
}

void Watch::MoveTo(double share)
{
    share_ = std::max(share_, std::min(share, 1.0));
    Ask();
}

void Watch::Ask()
{
    if (outer_ != nullptr) outer_->MoveTo(outerShare_ + share_ * (outerEnd_ - outerShare_));
    const auto now = std::chrono::steady_clock::now();
    if (now - lastAsked_ < pause_) return;
    const Unwatched unwatched;
    const bool goesOn = goesOn_(share_);
    lastAsked_ = std::chrono::steady_clock::now();
    if (!goesOn) throw Cancelled();
}

Watch* WatchedLoop::Current() { return innermost; }

void CheckWatch()
{
    if (innermost != nullptr) innermost->Ask();
}

void WatchedLoop::Begin(std::size_t steps)
{
    steps_ = std::max<std::size_t>(steps, 1);
    begin_ = watch_->share_;
    partEnd_ = watch_->end_;
    end_ = begin_ + ShareOfLoop * (partEnd_ - begin_);
    watch_->end_ = ShareAfter(1);
}

// What was done counts, also where the loop ended early; where it ends by an exception nobody asks any more.
void WatchedLoop::End() { watch_->end_ = partEnd_; }

void WatchedLoop::Advance(std::size_t count)
{
    done_ = std::min(steps_, done_ + count);
    watch_->end_ = ShareAfter(std::min(steps_, done_ + 1));
    watch_->MoveTo(ShareAfter(done_));
}

double WatchedLoop::ShareAfter(std::size_t steps) const
{
    return begin_ + (end_ - begin_) * static_cast<double>(steps) / static_cast<double>(steps_);
}

} // namespace brix
