#include <vgwctl/help/HelpText.h>

#include <manual/ManPage.h>
#include <vgwctl/command/Command.h>
#include <vgwctl/options/Options.h>

#include <algorithm>

namespace Vgwctl {
namespace {

struct ExitCodeText {
    ExitCode code;
    char const* text;
};

constexpr ExitCodeText exitCodes[] = {
    {ExitCode::success, "all went well"},
    {ExitCode::fatal, "a usage error, or what can't be done"},
    {ExitCode::absent, "what was asked for does not exist"},
    {ExitCode::timeout, "it took longer than --timeout"},
    {ExitCode::differs, "diff and verify: there are differences"},
};

std::string synopsis(Command const& command) {
    std::string text;
    for (std::string_view const flag : command.flags) text += "[" + std::string(flag) + "] ";
    return text + std::string(command.name) +
           (command.operands.empty() ? "" : " " + std::string(command.operands));
}

// Paths, classes and attributes are asked of the running agent.
constexpr char const* bashText = R"(# bash completion for vgwctl
_vgwctl() {
    local word=${COMP_WORDS[COMP_CWORD]} command='' kinds='' db=() n=0 at i
    COMPREPLY=()
    for ((at = 1; at < COMP_CWORD; at++)); do
        case ${COMP_WORDS[at]} in
        --db) db=(--db "${COMP_WORDS[at + 1]}") ;;
        --) command='' n=0 ;;
        @alternatives@)
            [ -n "$command" ] || { command=${COMP_WORDS[at]}; i=$at; continue; } ;;
        esac
        [ -z "$command" ] || n=$((n + 1))
    done
    if [ -z "$command" ]; then
        mapfile -t COMPREPLY < <(compgen -W '@words@ --db --path --format --data --columns
            --no-headings --timestamp --timeout --help' -- "$word")
        return
    fi
    case $command in
@kinds@    esac
    local kind=${kinds:n:1}
    [ "${kinds: -1}" != '*' ] || [ "$n" -lt $((${#kinds} - 1)) ] || kind=${kinds: -2:1}
    [ -n "$kind" ] || return
    mapfile -t COMPREPLY < <(vgwctl "${db[@]}" --timeout 2 complete "$kind" "$word" \
        "${COMP_WORDS[i + 1]}" 2>/dev/null)
    [ "$kind" = F ] && mapfile -t COMPREPLY < <(compgen -f -- "$word")
    compopt -o nospace 2>/dev/null
}
complete -F _vgwctl vgwctl
)";

void fill(std::string& text, std::string_view hole, std::string const& with) {
    text.replace(text.find(hole), hole.size(), with);
}

std::string names(char const* between) {
    std::string text;
    for (Command const& command : commands())
        text += (text.empty() ? "" : between) + std::string(command.name);
    return text;
}

}  // namespace

std::string commandHelp() {
    std::string text = "COMMANDS:\n";
    for (Command const& command : commands())
        text += "  " + synopsis(command) + "\n      " + std::string(command.summary) + "\n";
    text += "\nEXIT CODES:\n";
    for (auto const& [code, what] : exitCodes)
        text += "  " + std::to_string(static_cast<int>(code)) + "  " + what + "\n";
    return text;
}

std::string manPage() {
    std::string text =
        manualHead() +
        ".SH DESCRIPTION\nMounts the tree of an agent, such as vgwd(8), and works on it by the "
        "names of paths, classes and attributes that the agent tells. Values, keys and names are "
        "written without quotes; what contains an operator or a colon stands between double "
        "quotes, as in JSON. In what is printed, control bytes are written as \\exNN.\n" +
        manualOptions() + ".SH COMMANDS\n";
    for (Command const& command : commands()) {
        std::string what = std::string(command.summary) + ".";
        if (!command.details.empty()) what += " " + std::string(command.details);
        text += Manual::item(synopsis(command), what);
    }
    text += ".SH EXIT STATUS\n";
    for (auto const& [code, what] : exitCodes)
        text += Manual::item(std::to_string(static_cast<int>(code)), what);
    return text + ".SH SEE ALSO\nvgwd(8), ovsdb\\-client(1), vtep\\-ctl(8)\n";
}

std::string bashCompletion() {
    std::string kinds;
    for (Command const& command : commands())
        kinds += "        " + std::string(command.name) + ") kinds='" + std::string(command.kinds) +
                 "' ;;\n";
    std::string text = bashText;
    fill(text, "@alternatives@", names("|"));
    fill(text, "@words@", names(" "));
    fill(text, "@kinds@", kinds);
    return text;
}

std::string zshCompletion() {
    return "#compdef vgwctl\nautoload -U +X bashcompinit && bashcompinit\n" + bashCompletion();
}

}  // namespace Vgwctl
