#include <vgwctl/options/Options.h>

#include <manual/ManPage.h>
#include <manual/UsageError.h>

#include <CLI/CLI.hpp>

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <memory>

namespace Vgwctl {
namespace {

// As they stand on the command line, before they are understood.
struct Words {
    std::string columns;
    bool hasNoHeadings = false;
};

std::map<std::string, TextForm> const textForms{
    {"string", TextForm::string}, {"bare", TextForm::bare}, {"json", TextForm::json}};
std::map<std::string, Format> const formats{
    {"table", Format::table}, {"list", Format::list}, {"json", Format::json}, {"csv", Format::csv}};

// Tells the word and what was expected. What CLI11 has for this tells numbers of enumerations,
// ranges in 300 digits, or that something failed.
template <class Takes>
CLI::Validator expecting(std::string const& expected, Takes takes, std::string const& shown = "") {
    return CLI::Validator(
        [expected, takes](std::string& word) {
            return takes(word) ? std::string() : word + ": expected " + expected;
        },
        shown);
}

// One of the names in the map, as the number that CLI11 reads an enumeration from.
template <class Value>
CLI::Validator oneOf(std::map<std::string, Value> const& values, std::string const& expected) {
    return expecting(expected, [values](std::string& word) {
        auto const found = values.find(word);
        if (found != values.end()) word = std::to_string(static_cast<int>(found->second));
        return found != values.end();
    });
}

CLI::Validator const seconds = expecting(
    "seconds, 0 or more",
    [](std::string const& word) {
        double value = -1;
        return CLI::detail::lexical_cast(word, value) && value >= 0 && std::isfinite(value);
    },
    "seconds");

CLI::Validator const colors = expecting("auto, always or never", [](std::string const& word) {
    return word == "auto" || word == "always" || word == "never";
});

void describeConnection(CLI::App& app, Options& options) {
    app.add_option("--db", options.db,
                   "where the agent listens: unix:PATH, tcp:HOST:PORT or ssl:HOST:PORT")
        ->type_name("REMOTE")
        ->envname("VGWCTL_DB")
        ->capture_default_str();
    app.add_option("--path", options.path, "what is mounted of the agent's tree")
        ->type_name("PATH")
        ->capture_default_str();
    app.add_option("-p,--private-key", options.tls.privateKey, "our private key, for ssl: (PEM)")
        ->type_name("FILE");
    app.add_option("-c,--certificate", options.tls.certificate, "our certificate, for ssl: (PEM)")
        ->type_name("FILE");
    app.add_option("-C,--ca-cert", options.tls.authority,
                   "authority that signed the agent's certificate (PEM)")
        ->type_name("FILE");
    app.add_option("-t,--timeout", options.timeout,
                   "end with code 3 when it takes longer; 0 waits for ever")
        ->check(seconds)
        ->type_name("SECONDS");
    app.add_option(
           "--probe", options.probe,
           "ask an agent that is followed and says nothing for so long whether it is there; "
           "0 never asks")
        ->check(seconds)
        ->type_name("SECONDS")
        ->capture_default_str();
}

void describeOutput(CLI::App& app, Options& options, Words& words) {
    app.add_option("-f,--format", options.style.format, "table, list, json or csv")
        ->transform(oneOf(formats, "table, list, json or csv"))
        ->type_name("FORMAT");
    app.add_option("-d,--data", options.style.data, "texts in cells: string, bare or json")
        ->transform(oneOf(textForms, "string, bare or json"))
        ->type_name("FORM");
    app.add_option("--columns", words.columns, "those alone, in this order")
        ->type_name("NAME[,NAME]...");
    app.add_flag("--no-headings,--no-heading", words.hasNoHeadings, "print no headings");
    app.add_flag("--timestamp", options.hasTimestamp, "print when each change came");
    app.add_option("--color", options.color, "auto, always or never")
        ->check(colors)
        ->capture_default_str();
}

std::vector<std::string> partsOf(std::string const& text) {
    std::vector<std::string> parts;
    for (std::size_t at = 0; at <= text.size() && !text.empty();) {
        std::size_t const comma = std::min(text.find(',', at), text.size());
        parts.push_back(text.substr(at, comma - at));
        at = comma + 1;
    }
    return parts;
}

std::vector<std::vector<std::string>> commandsOf(std::vector<std::string> const& words) {
    std::vector<std::vector<std::string>> commands(1);
    for (std::string const& word : words) {
        if (word == "--") {
            commands.emplace_back();
        } else {
            commands.back().push_back(word);
        }
    }
    std::erase_if(commands, [](auto const& command) { return command.empty(); });
    if (commands.empty()) throw CLI::RequiredError("a command");
    return commands;
}

constexpr char synopsis[] = "[OPTION]... COMMAND [ARGUMENT]... [-- COMMAND [ARGUMENT]...]...";

class HelpFormat : public CLI::Formatter {
  public:
    std::string make_usage(CLI::App const*, std::string name) const override {
        return "Usage: " + name + " " + synopsis + "\n";
    }
};

// The options write into what they are given, which has to live as long.
std::unique_ptr<CLI::App> describedApp(Options& options, Words& words) {
    auto app = std::make_unique<CLI::App>(
        "Shows, watches and changes the state of a running agent.", "vgwctl");
    app->set_version_flag("-V,--version", "vgwctl " VGWCTL_VERSION);
    app->prefix_command();
    app->formatter(std::make_shared<HelpFormat>());
    app->option_defaults()->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    Manual::tellsErrorsByName(*app);
    describeConnection(*app, options);
    describeOutput(*app, options, words);
    return app;
}

}  // namespace

std::optional<Options> parseOptions(int count, char const* const* words, std::string const& help,
                                    int& exitCode) {
    Options options;
    Words said;
    auto const app = describedApp(options, said);
    app->footer(help);
    try {
        app->parse(count, words);
        options.style.columns = partsOf(said.columns);
        options.style.hasHeadings = !said.hasNoHeadings;
        options.commands = commandsOf(app->remaining());
    } catch (CLI::ParseError const& e) {
        exitCode = app->exit(e) == 0 ? 0 : 1;
        return std::nullopt;
    }
    return options;
}

std::string manualHead() {
    Options options;
    Words said;
    return Manual::head(*describedApp(options, said), 1, VGWCTL_VERSION, synopsis);
}

std::string manualOptions() {
    Options options;
    Words said;
    return Manual::options(*describedApp(options, said));
}

bool hasColor(Options const& options) {
    if (options.color != "auto") return options.color == "always";
    return ::isatty(STDOUT_FILENO) == 1 && std::getenv("NO_COLOR") == nullptr;
}

}  // namespace Vgwctl
