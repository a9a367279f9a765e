#include "Report.h"

#include <array>
#include <cstddef>
#include <iomanip>
#include <iostream>
#include <sstream>

namespace brix::tools {

std::string Text(double number)
{
    std::ostringstream text;
    text << std::setprecision(7) << number;
    return text.str();
}

std::string BytesText(double bytes)
{
    static constexpr std::array<const char*, 5> units{" bytes", " KB", " MB", " GB", " TB"};
    std::size_t unit = 0;
    for (; bytes >= 1000 && unit + 1 < units.size(); ++unit) bytes /= 1000;
    std::ostringstream text;
    text << std::setprecision(3) << bytes << units[unit];
    return text.str();
}

std::string Stopwatch::Text() const
{
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start_;
    std::ostringstream text;
    text << '(' << std::fixed << std::setprecision(3) << elapsed.count() << " s)";
    return text.str();
}

void PrintStep(const std::string& step, const std::string& result)
{
    std::cout << std::left << std::setw(9) << step << ' ' << result << '\n';
}

} // namespace brix::tools
