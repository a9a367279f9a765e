// Objects of the C interface that are freed by the function of their type.
#pragma once

#include "brix_c.h"

#include <memory>
#include <type_traits>

namespace brix::tests {

template <class Own, class Object> void FreeWith(void (*function)(Own*), Object* object)
{
    if constexpr (std::is_same_v<Own, Object>) function(object);
}

struct Free
{
    template <class Object> void operator()(Object* object) const
    {
#define BRIX_FUNCTION(name, parameters)
#define BRIX_FREE(name) FreeWith(name, object);
#include "Functions.inc"
#undef BRIX_FUNCTION
#undef BRIX_FREE
        if constexpr (std::is_same_v<Object, brix_watch>) brix_watch_end(object, nullptr);
    }
};
template <class Object> using Owned = std::unique_ptr<Object, Free>;

} // namespace brix::tests
