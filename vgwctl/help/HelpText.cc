#include <vgwctl/help/HelpText.h>

#include <vgwctl/command/Command.h>

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

struct OptionText {
    char const* option;
    char const* text;
};

constexpr OptionText options[] = {
    {"--db=REMOTE",
     "Where the agent listens: unix:PATH, tcp:HOST:PORT or ssl:HOST:PORT. Without it, what "
     "VGWCTL_DB says, or unix:/run/vgwd/vgwd.sock."},
    {"--path=PATH",
     "What is mounted of the agent's tree: /vgw, all of it, without it. A part is "
     "quicker; references out of it are not shown."},
    {"-p FILE, -c FILE, -C FILE", "Private key, certificate and authority for ssl:, as PEM files."},
    {"-t SECONDS, --timeout=SECONDS", "End with code 3 when it takes longer."},
    {"-f FORMAT, --format=FORMAT", "table, list, json or csv."},
    {"-d FORM, --data=FORM",
     "How texts in cells are written: string, in double quotes where they could be taken for "
     "something else; bare; or json."},
    {"--columns=NAME[,NAME]...", "Those columns alone, in this order."},
    {"--no-headings", "No headings."},
    {"--timestamp", "watch: when each change came."},
    {"--color=WHEN", "auto, always or never."},
    {"-h, --help; -V, --version", "This text, and the version."},
};

std::string synopsis(Command const& command) {
    std::string text;
    for (std::string_view const flag : command.flags) text += "[" + std::string(flag) + "] ";
    return text + std::string(command.name) +
           (command.operands.empty() ? "" : " " + std::string(command.operands));
}

// In the language of man pages a leading dot or quote, a backslash and a hyphen mean something.
std::string roff(std::string_view text) {
    std::string out = !text.empty() && (text[0] == '.' || text[0] == '\'') ? "\\&" : "";
    for (char const c : text) {
        if (c == '-') {
            out += "\\-";
        } else if (c == '\\') {
            out += "\\e";
        } else {
            out += c;
        }
    }
    return out;
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
        ".TH VGWCTL 1 \"\" \"vgwctl " VGWCTL_VERSION
        "\"\n"
        ".SH NAME\nvgwctl \\- show, watch and change the state of a running agent\n"
        ".SH SYNOPSIS\n\\fBvgwctl\\fR [\\fIOPTION\\fR]... \\fICOMMAND\\fR [\\fIARGUMENT\\fR]... "
        "[\\-\\- \\fICOMMAND\\fR [\\fIARGUMENT\\fR]...]...\n"
        ".SH DESCRIPTION\nMounts the tree of an agent, such as vgwd(8), and works on it by the "
        "names of paths, classes and attributes that the agent tells. Values, keys and names are "
        "written without quotes; what contains an operator or a colon stands between double "
        "quotes, as in JSON. In what is printed, control bytes are written as \\exNN.\n"
        ".SH OPTIONS\n";
    for (auto const& [option, what] : options)
        text += ".TP\n\\fB" + roff(option) + "\\fR\n" + roff(what) + "\n";
    text += ".SH COMMANDS\n";
    for (Command const& command : commands()) {
        text += ".TP\n\\fB" + roff(synopsis(command)) + "\\fR\n" + roff(command.summary) + ".\n";
        if (!command.details.empty()) text += roff(command.details) + "\n";
    }
    text += ".SH EXIT STATUS\n";
    for (auto const& [code, what] : exitCodes)
        text += ".TP\n" + std::to_string(static_cast<int>(code)) + "\n" + roff(what) + ".\n";
    return text +
           ".SH ENVIRONMENT\n.TP\nVGWCTL_DB\nThe remote, where \\-\\-db is not given.\n"
           ".SH SEE ALSO\nvgwd(8), ovsdb\\-client(1), vtep\\-ctl(8)\n";
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
