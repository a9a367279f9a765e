// The sentence of the error that an action raises, so that tables of messages can hold it in full.
#pragma once

#include <stdexcept>
#include <string>

namespace brix::tests {

/// what() of the exception, which must be of the given kind; any other kind leaves this function.
template <class Exception = std::domain_error, class Action> std::string MessageOf(const Action& action)
{
    try {
        action();
    } catch (const Exception& error) {
        return error.what();
    }
    return "(nothing was thrown)";
}

} // namespace brix::tests
