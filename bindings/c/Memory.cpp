// The host's limit of memory, and the sentence that names it.
#include "Objects.h"

#include <brix/frame/Require.h>

#include <atomic>
#include <charconv>

using namespace brix;
using namespace brix::capi;

namespace {

std::atomic<double> memoryLimit{std::numeric_limits<double>::infinity()};

// With three digits, "1.25 GB".
std::string BytesText(double bytes)
{
    static constexpr std::array<const char*, 6> units{" bytes", " KB", " MB", " GB", " TB", " PB"};
    std::size_t unit = 0;
    for (; bytes >= 999.5 && unit + 1 < units.size(); ++unit) bytes /= 1000;
    std::array<char, 32> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), bytes, std::chars_format::general, 3);
    return std::string(digits.data(), end.ptr) + units[unit];
}

} // namespace

namespace brix::capi {

BeyondMemoryLimit::BeyondMemoryLimit(const char* asked, double bytes, double limit)
    : sentence_("About " + BytesText(bytes) + " of memory would be needed for " + asked + "; the limit is " + BytesText(limit) +
                ".")
{}

double MemoryLimit() noexcept { return memoryLimit.load(std::memory_order_relaxed); }

} // namespace brix::capi

std::int32_t brix_set_memory_limit(double bytes, brix_error* error)
{
    return Guarded(error, {}, [&] {
        RequireNumberAtLeast("The memory limit", 0, bytes);
        memoryLimit.store(bytes, std::memory_order_relaxed);
    });
}

std::int32_t brix_get_memory_limit(double* result, brix_error* error)
{
    return Guarded(error, {result}, [&] { *result = MemoryLimit(); });
}

std::int32_t brix_require_memory_for_lists(double bytes, brix_error* error)
{
    return Guarded(
        error, {}, "the lists of the result", [&] { return bytes; }, [] {});
}
