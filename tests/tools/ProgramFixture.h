// Runs the program brix as a user does, in a folder of its own.
#pragma once

#include <brix.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <regex>
#include <sstream>

#include <sys/wait.h>
#include <unistd.h>

namespace brix {

namespace fs = std::filesystem;

inline std::string ContentOf(const fs::path& filePath)
{
    std::ifstream file(filePath, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

struct Outcome
{
    int exitCode;
    std::string output, error;
};

// Runs the program in a folder of its own, in which files have short names.
class Program : public ::testing::Test
{
protected:
    Program() : folder_(fs::temp_directory_path() / ("brix-program-" + std::to_string(getpid())))
    {
        fs::remove_all(folder_);
        fs::create_directories(folder_);
    }
    ~Program() override { fs::remove_all(folder_); }

    Outcome Run(const std::string& arguments, const std::string& before = "") const
    {
        const std::string command =
            "cd '" + folder_.string() + "' && { " + before + " '" BRIX_PROGRAM "' " + arguments + " ; } >stdout.txt 2>stderr.txt";
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ContentOf(folder_ / "stdout.txt"),
                ContentOf(folder_ / "stderr.txt")};
    }

    void Write(const std::string& name, const std::string& content) const
    {
        std::ofstream(folder_ / name, std::ios::binary) << content;
    }

    void MakeHouse() const { ASSERT_EQ(Run("scene building --empty -o house.stl").exitCode, 0); }

    std::vector<WorldTriangle> Load(const std::string& name) const { return LoadTrianglesFromSTL(folder_ / name, false); }

    const fs::path folder_;
};

// The number that the report gives where the pattern has its group.
inline std::int64_t Reported(const Outcome& outcome, const std::string& pattern)
{
    std::smatch match;
    return std::regex_search(outcome.output, match, std::regex(pattern)) ? std::stoll(match[1].str()) : -1;
}

inline std::string WithoutTimes(const std::string& report)
{
    return std::regex_replace(report, std::regex("\\([0-9.]+ s\\)"), "(time)");
}

} // namespace brix
