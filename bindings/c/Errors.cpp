#include "Objects.h"

#include <algorithm>
#include <cstdlib>
#include <string>

namespace brix::capi {
namespace {

// There is always room for this message, as it needs none.
constexpr const char NoMemory[] = "There is not enough memory for the result or for the message that says so.";

// The parts of a message one after the other.
std::int32_t Report(brix_error* error, brix_status status, std::initializer_list<std::string_view> parts) noexcept
{
    if (error == nullptr) return status;
    std::size_t length = 0;
    for (const std::string_view part : parts) length += part.size();
    auto* message = static_cast<char*>(std::malloc(length + 1));
    if (message == nullptr) {
        *error = {BRIX_OUT_OF_MEMORY, 0, sizeof NoMemory - 1, NoMemory};
        return error->status;
    }
    char* end = message;
    for (const std::string_view part : parts) end = std::copy(part.begin(), part.end(), end);
    *end = 0;
    *error = {status, 1, static_cast<std::int64_t>(length), message};
    return status;
}

std::int32_t Report(brix_error* error, brix_status status, const std::exception& exception) noexcept
{
    return Report(error, status, {exception.what()});
}

std::int32_t ReportNoMemoryFor(brix_error* error, const char* asked) noexcept
{
    return Report(error, BRIX_OUT_OF_MEMORY, {"There is not enough memory for ", asked, "."});
}

} // namespace

std::int32_t ReportException(brix_error* error, const char* asked) noexcept
{
    try {
        throw;
    } catch (const BeyondMemoryLimit& exception) {
        return Report(error, BRIX_OUT_OF_MEMORY, exception);
    } catch (const NotEnoughMemory& exception) {
        return Report(error, BRIX_OUT_OF_MEMORY, exception);
    } catch (const std::bad_alloc&) {
        return ReportNoMemoryFor(error, asked);
    } catch (const std::length_error&) { // more items than a container of the standard library can have
        return ReportNoMemoryFor(error, asked);
    } catch (const Cancelled& exception) {
        return Report(error, BRIX_CANCELLED, exception);
    } catch (const NullArgument& exception) {
        return Report(error, BRIX_NULL_ARGUMENT, exception);
    } catch (const std::domain_error& exception) {
        return Report(error, BRIX_INVALID_ARGUMENT, exception);
    } catch (const std::out_of_range& exception) {
        return Report(error, BRIX_OUT_OF_RANGE, exception);
    } catch (const std::runtime_error& exception) {
        return Report(error, BRIX_FILE_FAILURE, exception);
    } catch (const std::exception& exception) {
        return Report(error, BRIX_FAILURE, exception);
    } catch (...) {
        return Report(error, BRIX_FAILURE, {"The engine failed for an unknown reason."});
    }
}

void RequirePart(std::int64_t first, std::int64_t count, std::int64_t size, const void* destination)
{
    if (count > 0) RequireGiven(destination);
    if (first < 0 || count < 0 || first > size || count > size - first) {
        throw std::domain_error("The part to be copied must lie within the result. The part from " + std::to_string(first) +
                                " on, " + std::to_string(count) + " long, was requested of " + std::to_string(size) + ".");
    }
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
