// Progress and stop.
#include "Objects.h"

#include <brix/frame/Require.h>

#include <thread>

using namespace brix;
using namespace brix::capi;

struct brix_watch
{
    std::thread::id thread;
    Watch watch;
};

std::int32_t brix_watch_begin(brix_watch_callback callback, void* context, double pause_seconds, brix_watch** result,
                              brix_error* error)
{
    return Guarded(error, {result}, [&] {
        if (callback == nullptr) throw NullArgument();
        constexpr double mostSeconds = 1e9; // in nanoseconds they are still counted in 64 bits
        RequireNumberAtLeast("The pause of a watch", 0, pause_seconds);
        const auto pause = std::chrono::duration<double>(std::min(pause_seconds, mostSeconds));
        *result = new brix_watch{std::this_thread::get_id(), Watch([=](double share) { return callback(context, share) == 0; },
                                                                   std::chrono::duration_cast<Watch::Duration>(pause))};
    });
}

std::int32_t brix_watch_end(brix_watch* watch, brix_error* error)
{
    return Guarded(error, {watch}, [&] {
        Require(watch->thread == std::this_thread::get_id(), "A watch has to be ended on the thread on which it was begun.");
        delete watch;
    });
}
