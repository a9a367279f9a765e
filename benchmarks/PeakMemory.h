// How much memory a piece of work takes at its peak, whatever allocator it uses.
#pragma once

#include <cstdint>
#include <functional>

namespace brix::benchmarks {

/// Bytes that become resident, at most at a time, while work() runs: measured in a copy of the process, so that what was freed
/// before does not serve again. Whole pages, as the system counts them.
std::int64_t PeakBytes(const std::function<void()>& work);

} // namespace brix::benchmarks
