#include "Objects.h"

#include <cstdlib>
#include <cstring>
#include <string>

namespace brix::capi {
namespace {

// There is always room for this message, as it needs none.
void ReportOutOfMemory(brix_error* error, const char* message) noexcept
{
    *error = {BRIX_OUT_OF_MEMORY, 0, static_cast<std::int64_t>(std::strlen(message)), message};
}

std::int32_t Report(brix_error* error, brix_status status, const char* message) noexcept
{
    if (error == nullptr) return status;
    const std::size_t length = std::strlen(message);
    auto* copy = static_cast<char*>(std::malloc(length + 1));
    if (copy == nullptr) {
        ReportOutOfMemory(error, "std::bad_alloc");
        return error->status;
    }
    std::memcpy(copy, message, length + 1);
    *error = {status, 1, static_cast<std::int64_t>(length), copy};
    return status;
}

} // namespace

std::int32_t ReportException(brix_error* error) noexcept
{
    try {
        throw;
    } catch (const std::bad_alloc&) {
        if (error != nullptr) ReportOutOfMemory(error, "std::bad_alloc");
        return BRIX_OUT_OF_MEMORY;
    } catch (const NullArgument& exception) {
        return Report(error, BRIX_NULL_ARGUMENT, exception.what());
    } catch (const std::domain_error& exception) {
        return Report(error, BRIX_INVALID_ARGUMENT, exception.what());
    } catch (const std::out_of_range& exception) {
        return Report(error, BRIX_OUT_OF_RANGE, exception.what());
    } catch (const std::runtime_error& exception) {
        return Report(error, BRIX_FILE_FAILURE, exception.what());
    } catch (const std::exception& exception) {
        return Report(error, BRIX_FAILURE, exception.what());
    } catch (...) {
        return Report(error, BRIX_FAILURE, "The engine failed for an unknown reason.");
    }
}

void RequirePart(std::int64_t first, std::int64_t count, std::int64_t size, const void* destination)
{
    if (first < 0 || count < 0 || first > size || count > size - first) {
        throw std::domain_error("The part to be copied must lie within the result. The part from " + std::to_string(first) +
                                " on, " + std::to_string(count) + " long, was requested of " + std::to_string(size) + ".");
    }
    if (count > 0) RequireGiven(destination);
}

} // namespace brix::capi

std::int32_t brix_abi_version(void) { return BRIX_ABI_VERSION; }

const char* brix_version_string(void) { return BRIX_VERSION; }

void brix_error_clear(brix_error* error)
{
    if (error == nullptr) return;
    if (error->is_owned != 0) std::free(const_cast<char*>(error->message));
    *error = {};
}
