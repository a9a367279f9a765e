// Lines of text and doubles of any bits: the engine's own conversions must do what the standard streams do in the "C" locale.
#include "support/NumbersByStream.h"

#include <cstdlib>
#include <cstring>

using namespace brix::tests;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string line(reinterpret_cast<const char*>(data), size);
    if (ReadByHand(line) != ReadByStream(line)) std::abort();

    double number = 0;
    if (size < sizeof number) return 0;
    std::memcpy(&number, data, sizeof number);
    if (WrittenByHand(number) != WrittenByStream(number)) std::abort();
    return 0;
}
