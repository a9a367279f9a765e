// Lines of text and doubles of any bits: the engine's own conversions must do what the standard streams do in the "C" locale.
#include "triangles/TextNumbers.h"

#include <cstdlib>
#include <cstring>
#include <iostream>

namespace {

void RequireSame(const std::string& ours, const std::string& theirs)
{
    if (ours == theirs) return;
    std::cerr << "Ours: " << ours << "\nThe stream's: " << theirs << '\n';
    std::abort();
}

void CheckReading(std::string_view line)
{
    std::istringstream stream{std::string(line)};
    stream.imbue(std::locale::classic());
    for (int i = 0; i < 4; ++i) {
        double ours = 7;
        double theirs = 7;
        const bool isNumber = brix::TakeNumber(line, ours);
        stream >> theirs;
        RequireSame(std::to_string(std::bit_cast<std::uint64_t>(ours)), std::to_string(std::bit_cast<std::uint64_t>(theirs)));
        RequireSame(isNumber ? "a number" : "no number", stream ? "a number" : "no number");
        if (!isNumber) return;
    }
}

void CheckWriting(double number)
{
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream << number;
    std::array<char, brix::maxNumberLength> text{};
    char* const end = brix::WriteNumber(text.data(), number);
    RequireSame(std::string(text.data(), end), stream.str());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    CheckReading({reinterpret_cast<const char*>(data), size});

    double number = 0;
    if (size < sizeof number) return 0;
    std::memcpy(&number, data, sizeof number);
    CheckWriting(number);
    return 0;
}
