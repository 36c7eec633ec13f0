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

// Paths, classes and attributes are asked of the running agent, with the options that stand in
// front of the first command. The words are taken from the line: those that bash makes of it end at
// colons, and so do those that it replaces.
constexpr char const* bashText = R"(# bash completion for vgwctl
_vgwctl() {
    local line=${COMP_LINE:0:COMP_POINT} words=() operands=() command='' first='' kinds='' at
    read -ra words <<<"$line"
    [[ $line != *[[:space:]] ]] || words+=('')
    local word=${words[-1]}
    COMPREPLY=()
    for ((at = 1; at < ${#words[@]} - 1; at++)); do
        case ${words[at]} in
        --) command='' operands=() ;;
        -*) ;;
        @alternatives@)
            if [ -n "$command" ]; then
                operands+=("${words[at]}")
            else
                command=${words[at]} first=${first:-$at}
            fi ;;
        *) [ -z "$command" ] || operands+=("${words[at]}") ;;
        esac
    done
    if [ -z "$command" ]; then
        mapfile -t COMPREPLY < <(compgen -W '@words@ @options@' -- "$word")
        return
    fi
    case $command in
@kinds@    esac
    local n=${#operands[@]} last=$((${#kinds} - 1))
    local kind=${kinds:n:1}
    [ "${kinds: -1}" != '*' ] || [ "$n" -lt "$last" ] || kind=${kinds:last-1:1}
    [ -n "$kind" ] || return
    compopt -o nospace 2>/dev/null
    if [ "$kind" = F ]; then
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
    else
        mapfile -t COMPREPLY < <(vgwctl "${words[@]:1:first-1}" --timeout 2 \
            complete "$kind" "$word" "${operands[0]}" 2>/dev/null)
    fi
    local before=${word%"${word##*[:=]}"}
    COMPREPLY=("${COMPREPLY[@]#"$before"}")
}
complete -F _vgwctl vgwctl
)";

constexpr char const* zshText = R"zsh(#compdef vgwctl
# zsh completion for vgwctl
local -a operands found
local command='' kinds='' kind=''
integer at first=0
for ((at = 2; at < CURRENT; at++)); do
    case ${(Q)words[at]} in
    --) command='' operands=() ;;
    -*) ;;
    @alternatives@)
        if [[ -n $command ]]; then
            operands+=("${(Q)words[at]}")
        else
            command=$words[at]
            ((first)) || first=$at
        fi ;;
    *) [[ -z $command ]] || operands+=("${(Q)words[at]}") ;;
    esac
done
if [[ -z $command ]]; then
    compadd -- @words@
    [[ $PREFIX != -* ]] || compadd -- @options@
    return
fi
case $command in
@kinds@esac
kind=$kinds[${#operands}+1]
[[ $kinds != *'*' || ${#operands} -lt $((${#kinds} - 1)) ]] || kind=$kinds[-2]
[[ -n $kind ]] || return 1
if [[ $kind == F ]]; then
    _files
    return
fi
found=(${(f)"$(vgwctl ${(Q)words[2,first-1]} --timeout 2 \
    complete $kind "${(Q)PREFIX}" "$operands[1]" 2>/dev/null)"})
compadd -S '' -- $found
)zsh";

constexpr char const* optionWords =
    "--db --path --format --data --columns --no-headings --timestamp --timeout --probe --help";

void fill(std::string& text, std::string_view hole, std::string const& with) {
    text.replace(text.find(hole), hole.size(), with);
}

std::string names(char const* between) {
    std::string text;
    for (Command const& command : commands())
        text += (text.empty() ? "" : between) + std::string(command.name);
    return text;
}

std::string completion(std::string text) {
    std::string kinds;
    for (Command const& command : commands())
        kinds += "    " + std::string(command.name) + ") kinds='" + std::string(command.kinds) +
                 "' ;;\n";
    fill(text, "@alternatives@", names("|"));
    fill(text, "@words@", names(" "));
    fill(text, "@options@", optionWords);
    fill(text, "@kinds@", kinds);
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
        if (!command.formats.empty()) what += " Formats: " + formatNames(command) + ".";
        text += Manual::item(synopsis(command), what);
    }
    text += ".SH EXIT STATUS\n";
    for (auto const& [code, what] : exitCodes)
        text += Manual::item(std::to_string(static_cast<int>(code)), what);
    return text + ".SH SEE ALSO\nvgwd(8), ovsdb\\-client(1), vtep\\-ctl(8)\n";
}

std::string bashCompletion() { return completion(bashText); }

std::string zshCompletion() { return completion(zshText); }

}  // namespace Vgwctl
