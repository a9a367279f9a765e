// The words after a step's name, read one after the other.
#pragma once

#include "Pipeline.h"
#include "Report.h"

#include <brix/frame/Triples.h>

#include <array>
#include <charconv>
#include <cmath>

namespace brix::tools {

class Arguments
{
public:
    Arguments(const std::string& step, const std::string* first) : step_(step), next_(first) {}

    std::string Word() { return *next_++; }

    int Integer()
    {
        const int number = Read<int>("a whole number");
        integers_.push_back(number);
        return number;
    }

    /// Those that were read.
    const std::vector<std::int64_t>& Integers() const { return integers_; }

    double Number()
    {
        const std::string& word = *next_;
        const double number = Read<double>("a number");
        if (!std::isfinite(number)) throw Complaint("a number", word);
        return number;
    }

    std::array<double, 3> Point()
    {
        const double x = Number();
        const double y = Number();
        return {x, y, Number()};
    }

    Triple Direction()
    {
        const int x = Integer();
        const int y = Integer();
        return {x, y, Integer()};
    }

private:
    template <class Value> Value Read(const char* wanted)
    {
        const std::string word = Word();
        Value value{};
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
        if (error != std::errc() || end != word.data() + word.size()) throw Complaint(wanted, word);
        return value;
    }

    UsageError Complaint(const std::string& wanted, const std::string& word) const
    {
        return UsageError("The step " + step_ + " needs " + wanted + ", not \"" + word + "\".");
    }

    std::string step_;
    const std::string* next_;
    std::vector<std::int64_t> integers_;
};

} // namespace brix::tools
