#include "Documents.h"

#include "Report.h"
#include "Steps.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace brix::tools {
namespace {

using Names = std::vector<std::string>;

// A command by its place, as in "scene building"; the program itself has none.
struct Place
{
    const CLI::App* command;
    std::string path;
};

std::vector<const CLI::App*> CommandsOf(const CLI::App& app)
{
    return app.get_subcommands([](const CLI::App*) { return true; });
}

void AddPlaces(const CLI::App& app, const std::string& path, std::vector<Place>& places)
{
    places.push_back({&app, path});
    for (const CLI::App* const command : CommandsOf(app))
        AddPlaces(*command, path + (path.empty() ? "" : " ") + command->get_name(), places);
}

std::vector<Place> AllPlaces(const CLI::App& program)
{
    std::vector<Place> places;
    AddPlaces(program, "", places);
    return places;
}

std::vector<const CLI::Option*> OptionsOf(const CLI::App& app)
{
    return app.get_options([](const CLI::Option* option) { return option->nonpositional() && !option->get_group().empty(); });
}

bool TakesValue(const CLI::Option& option) { return option.get_items_expected_max() > 0; }

// With their dashes.
Names NamesOf(const CLI::Option& option)
{
    Names names;
    for (const std::string& name : option.get_snames()) names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
    return names;
}

// What may stand next, apart from files.
Names WordsOf(const CLI::App& app)
{
    Names words;
    for (const CLI::App* const command : CommandsOf(app)) words.push_back(command->get_name());
    for (const CLI::Option* const option : OptionsOf(app))
        for (const std::string& name : NamesOf(*option)) words.push_back(name);
    if (app.get_name() == "run")
        for (const Step& step : AllSteps()) words.push_back(step.name);
    return words;
}

std::string Joined(const Names& words, const std::string& separator)
{
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : separator) + word;
    return text;
}

// `text` with `before` in front of each of the characters.
std::string Escaped(const std::string& text, const std::string& characters, const std::string& before)
{
    std::string escaped;
    for (const char c : text) {
        if (characters.find(c) != std::string::npos) escaped += before;
        escaped += c;
    }
    return escaped;
}

std::string Quote(const std::string& text)
{
    std::string quoted = "'";
    for (const char c : text) {
        if (c == '\'')
            quoted += "'\\''";
        else
            quoted += c;
    }
    return quoted += '\'';
}

// The shell's own loop that finds the command: words that name no command of the current one are passed over.
std::string FindCommand(const std::vector<Place>& places, const std::string& words, const std::string& indent)
{
    std::string text = indent + "local command= word\n" + indent + "for word in " + words + "; do\n" + indent +
                       "    case \"$command $word\" in\n";
    for (const Place& place : places) {
        if (place.path.empty()) continue;
        const bool isTop = place.path.find(' ') == std::string::npos;
        text += indent + "    " + Quote((isTop ? " " : "") + place.path) + ") command=" + Quote(place.path) + " ;;\n";
    }
    return text + indent + "    esac\n" + indent + "done\n";
}

std::string BashCompletion(const CLI::App& program)
{
    const std::vector<Place> places = AllPlaces(program);
    std::string text = "# Completion of brix for bash.\n_brix() {\n" +
                       FindCommand(places, "\"${COMP_WORDS[@]:1:COMP_CWORD-1}\"", "    ") +
                       "    local current=${COMP_WORDS[COMP_CWORD]} words=\n    case $command in\n";
    for (const Place& place : places)
        text += "    " + Quote(place.path) + ") words=" + Quote(Joined(WordsOf(*place.command), " ")) + " ;;\n";
    return text + "    esac\n"
                  "    mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$current\"; [[ -z $command || $current == -* ]] || "
                  "compgen -f -- \"$current\")\n"
                  "}\ncomplete -o filenames -F _brix brix\n";
}

std::string ZshCompletion(const CLI::App& program)
{
    const std::vector<Place> places = AllPlaces(program);
    std::string text = "#compdef brix\n# Completion of brix for zsh.\n_brix() {\n" +
                       FindCommand(places, "\"${(@)words[2,CURRENT-1]}\"", "    ") + "    case $command in\n";
    for (const Place& place : places) {
        text += "    " + Quote(place.path) + ")\n";
        if (const auto commands = CommandsOf(*place.command); !commands.empty()) {
            text += "        local -a commands=(";
            for (const CLI::App* const command : commands)
                text += "\n            " + Quote(command->get_name() + ":" + Escaped(command->get_description(), ":\\", "\\"));
            text += ")\n        _describe command commands\n";
        }
        text += "        _arguments -S";
        for (const CLI::Option* const option : OptionsOf(*place.command)) {
            std::string meaning = "[";
            meaning += Escaped(option->get_description(), "[]:\\", "\\") + "]";
            if (TakesValue(*option)) meaning += ':' + Escaped(option->get_type_name(), "[]:\\", "\\") + ":_files";
            for (const std::string& name : NamesOf(*option)) text += " \\\n            " + Quote('*' + name + meaning);
        }
        if (place.command->get_name() == "run") {
            text += " \\\n            " + Quote("*:step or file:{ compadd -- ");
            text.pop_back();
            for (const Step& step : AllSteps()) text += step.name + " ";
            text += "; _files }'\n        ;;\n";
        } else {
            text += " \\\n            '*:file:_files'\n        ;;\n";
        }
    }
    return text + "    esac\n}\n_brix \"$@\"\n";
}

std::string FishCompletion(const CLI::App& program)
{
    std::string text = "# Completion of brix for fish.\n";
    for (const auto& [app, path] : AllPlaces(program)) {
        const std::string here = path.empty() ? "__fish_use_subcommand" : "__fish_seen_subcommand_from " + app->get_name();
        const std::string start = "complete -c brix -n " + Quote(here);
        for (const CLI::App* const command : CommandsOf(*app))
            text += start + " -f -a " + command->get_name() + " -d " + Quote(command->get_description()) + "\n";
        for (const CLI::Option* const option : OptionsOf(*app)) {
            text += start;
            for (const std::string& name : option->get_snames()) text += " -s " + name;
            for (const std::string& name : option->get_lnames()) text += " -l " + name;
            text += (TakesValue(*option) ? " -r -d " : " -d ") + Quote(option->get_description()) + "\n";
        }
        if (app->get_name() == "run")
            for (const Step& step : AllSteps()) text += start + " -a " + step.name + " -d " + Quote(step.meaning) + "\n";
    }
    return text;
}

// Text as the manual's language has it. Lines that begin with a dot or an apostrophe would be orders.
std::string Roff(const std::string& text)
{
    std::string roff;
    for (const char c : text) {
        if ((c == '.' || c == '\'') && (roff.empty() || roff.back() == '\n')) roff += "\\&";
        if (c == '\\' || c == '-') roff += '\\';
        roff += c == '\\' ? 'e' : c;
    }
    return roff;
}

std::string ManOption(const CLI::Option& option)
{
    const bool isNamed = option.nonpositional();
    const std::string names = isNamed ? Joined(NamesOf(option), ", ") : option.get_name(true);
    const std::string value = TakesValue(option) ? " " + option.get_type_name() : "";
    const std::string given = option.get_default_str().empty() ? "" : " [" + option.get_default_str() + "]";
    return ".TP\n.B " + Roff(names + value) + "\n" + Roff(option.get_description() + given) + "\n";
}

std::string ManPage(const CLI::App& program)
{
    std::string text = ".TH BRIX 1 \"\" \"brix " BRIX_VERSION
                       "\" \"User Commands\"\n.SH NAME\nbrix \\- voxel geometry from the command line\n"
                       ".SH SYNOPSIS\n.B brix\n.I COMMAND\n[\\fIOPTION\\fR...]\n.SH DESCRIPTION\n" +
                       Roff(program.get_description()) + "\n.PP\n" + Roff(program.get_footer()) + "\n.SH OPTIONS\n";
    for (const auto& [app, path] : AllPlaces(program)) {
        if (!path.empty())
            text += (app->get_parent() == &program ? ".SH BRIX " : ".SS brix ") + Roff(path) + "\n" +
                    Roff(app->get_description()) + ".\n";
        for (const CLI::Option* const option : app->get_options())
            if (!option->get_group().empty()) text += ManOption(*option);
        if (!path.empty() && !app->get_footer().empty()) text += ".PP\n.nf\n" + Roff(app->get_footer()) + "\n.fi\n";
    }
    return text + ".SH SEE ALSO\nEach command tells its options itself: brix COMMAND \\-\\-help\n";
}

} // namespace

std::string MakeDocument(const CLI::App& program, const std::string& kind)
{
    if (kind == "man") return ManPage(program);
    if (kind == "bash") return BashCompletion(program);
    if (kind == "zsh") return ZshCompletion(program);
    if (kind == "fish") return FishCompletion(program);
    throw UsageError("The documents are man, bash, zsh and fish, not \"" + kind + "\".");
}

} // namespace brix::tools
