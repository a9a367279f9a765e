// The manual page and the completions tell what the parser knows.
#ifdef BRIX_PROGRAM
#include "ProgramFixture.h"

namespace brix {
namespace {

std::vector<std::string> OptionsIn(const std::string& help)
{
    std::vector<std::string> options;
    const std::regex pattern("(?:^|\\n) +(?:-\\w,)?(--[a-z-]+)");
    for (std::sregex_iterator match(help.begin(), help.end(), pattern), end; match != end; ++match)
        options.push_back((*match)[1].str());
    return options;
}

TEST_F(Program, DocumentsEveryCommandAndOption)
{
    const std::string manual = std::regex_replace(Run("--document man").output, std::regex("\\\\-"), "-");
    const std::string bash = Run("--document bash").output;
    const std::string zsh = Run("--document zsh").output;
    const std::string fish = Run("--document fish").output;
    for (const std::string command :
         {"info", "check", "voxelize", "run", "slice", "walkable", "travel", "scene", "scene building", "scene city"}) {
        const std::size_t start = manual.find(" BRIX " + command + "\n") == std::string::npos
                                      ? manual.find(" brix " + command + "\n")
                                      : manual.find(" BRIX " + command + "\n");
        ASSERT_NE(start, std::string::npos) << command;
        const std::string section = manual.substr(start, manual.find("\n.S", start) - start);
        const std::size_t words = bash.find("'" + command + "') words=");
        ASSERT_NE(words, std::string::npos) << command;
        const std::string completed = bash.substr(words, bash.find('\n', words) - words);
        EXPECT_NE(zsh.find("'" + command + "')\n"), std::string::npos) << command;
        EXPECT_NE(fish.find("seen_subcommand_from " + command.substr(command.find(' ') + 1) + "' "), std::string::npos)
            << command;
        const std::vector<std::string> options = OptionsIn(Run(command + " --help").output);
        EXPECT_FALSE(options.empty());
        for (const std::string& option : options) {
            EXPECT_NE(section.find(option), std::string::npos) << command << ' ' << option << section;
            EXPECT_NE(completed.find(option), std::string::npos) << command << ' ' << option;
        }
    }
}

TEST_F(Program, CompletesCommandLinesInThreeShells)
{
    for (const std::string shell : {"bash", "zsh", "fish"}) {
        Write("completion", Run("--document " + shell).output);
        const std::string here = "cd '" + folder_.string() + "' && ";
        if (std::system(("command -v " + shell + " >/dev/null").c_str()) != 0) continue;
        EXPECT_EQ(std::system((here + shell + " -n completion").c_str()), 0) << shell;
    }
    Write("completion", Run("--document bash").output);
    const auto completed = [&](const std::string& words, int current) {
        Write("ask", "source completion; COMP_WORDS=(" + words + "); COMP_CWORD=" + std::to_string(current) +
                         "; _brix; echo ${COMPREPLY[@]}");
        return Run("--version; bash ask").output;
    };
    EXPECT_NE(completed("brix vo", 1).find("\nvoxelize\n"), std::string::npos);
    EXPECT_NE(completed("brix scene b", 2).find("\nbuilding\n"), std::string::npos);
    EXPECT_NE(completed("brix scene city --tr", 3).find("\n--triangles\n"), std::string::npos);
    EXPECT_NE(completed("brix voxelize a.stl --voxel", 3).find("\n--voxel --voxels\n"), std::string::npos);
    EXPECT_NE(completed("brix run a.stl -- fill-en", 4).find("\nfill-enclosed\n"), std::string::npos);
}

} // namespace
} // namespace brix
#endif
