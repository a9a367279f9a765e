// The words after a step's name, read one after the other.
#pragma once

#include "Pipeline.h"
#include "Report.h"

#include <brix/frame/Triples.h>

#include <array>
#include <charconv>
#include <cmath>
#include <span>
#include <string_view>

namespace brix::tools {

class Arguments
{
public:
    /// `wanted`: how the help writes them.
    Arguments(const std::string& step, const std::string& wanted, std::span<const std::string> words)
        : step_(step), wanted_(wanted), left_(words)
    {}

    std::string Word()
    {
        if (left_.empty()) throw UsageError("The step " + step_ + " needs " + wanted_ + ".");
        const std::string& word = left_.front();
        left_ = left_.subspan(1);
        return word;
    }

    /// Whether an option stands here, which is read then.
    bool Option(std::string_view name)
    {
        if (left_.empty() || left_.front() != name) return false;
        left_ = left_.subspan(1);
        return true;
    }

    int Integer()
    {
        const int number = Read<int>("a whole number");
        integers_.push_back(number);
        return number;
    }

    /// Those that were read.
    const std::vector<std::int64_t>& Integers() const { return integers_; }

    /// What was not read.
    std::span<const std::string> Left() const { return left_; }

    double Number()
    {
        const std::string word = left_.empty() ? "" : left_.front();
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
    std::string wanted_;
    std::span<const std::string> left_;
    std::vector<std::int64_t> integers_;
};

} // namespace brix::tools
