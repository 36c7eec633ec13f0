#include <vgwd/agent/Options.h>

#include <vgwd/agent/LogWords.h>

#include <manual/ManPage.h>
#include <manual/UsageError.h>

#include <CLI/CLI.hpp>

#include <iostream>

namespace Vgwd {
namespace {

// As they stand on the command line, before they are understood.
struct Words {
    std::string remotes;
    std::vector<std::string> listen;
    std::vector<std::string> logs;
    bool wantsManual = false;
};

void describeServer(CLI::App& app, Options& options, Words& words) {
    app.add_option("--ovsdb", words.remotes,
                   "servers of the database, tried in turn: unix:PATH, tcp:HOST:PORT, "
                   "ssl:HOST:PORT, parted by commas; "
                   "without it an ovsdb-server of our own is started in the run directory")
        ->type_name("REMOTE[,REMOTE...]");
    app.add_option("--run-dir", options.runDirectory,
                   "where our log and our own server's database and sockets are; made for the "
                   "owner alone")
        ->capture_default_str();
    app.add_option("--schema", options.schemaFile, "schema of our own server's database")
        ->capture_default_str();
    app.add_option("--ovsdb-server", options.serverProgram,
                   "our own server's program; without it ovsdb-server is looked for in PATH")
        ->type_name("FILE");
    app.add_option("-p,--private-key", options.tls.privateKey, "our private key, for ssl: (PEM)")
        ->type_name("FILE");
    app.add_option("-c,--certificate", options.tls.certificate, "our certificate, for ssl: (PEM)")
        ->type_name("FILE");
    app.add_option("-C,--ca-cert", options.tls.authority,
                   "authority that signed the server's certificate, and those of peers (PEM)")
        ->type_name("FILE");
}

void describeServing(CLI::App& app, Options& options, Words& words) {
    app.add_option("--listen", words.listen,
                   "where others connect who mount our tree: unix:PATH, tcp:ADDR:PORT, "
                   "ssl:ADDR:PORT, or none; may be repeated [vgwd.sock in the run directory]")
        ->allow_extra_args(false)
        ->type_name("ADDRESS");
    app.add_option("--group", options.readGroup, "whose members may connect and read")
        ->type_name("NAME|NUMBER");
    app.add_option("--write-group", options.writeGroup, "whose members may connect and write")
        ->type_name("NAME|NUMBER");
    app.add_flag("--tcp-readers", options.tcpReads,
                 "anyone on this machine may read by tcp:, where nobody can be told apart");
    app.add_option("--write-cn", options.writerNames,
                   "common name of a certificate whose holder may write by ssl:; may be repeated")
        ->allow_extra_args(false)
        ->type_name("NAME");
    app.add_option("--peer-timeout", options.peerTimeout,
                   "cut a peer on a network, and say of one on this machine, that leaves a "
                   "question unanswered for so many seconds; 0: never")
        ->check(CLI::NonNegativeNumber)
        ->type_name("SECONDS")
        ->capture_default_str();
}

void describeOutput(CLI::App& app, Options& options) {
    app.add_flag("--once", options.once, "print the mirror once it is in step, and end");
    app.add_option("-f,--format", options.format, "of what --once prints: json or tree")
        ->check(CLI::IsMember({"json", "tree"}))
        ->capture_default_str();
    app.add_flag("--watch", options.watch,
                 "print each change of the mirror and of the session, attribute by attribute");
    app.add_option("--dump-file", options.dumpFile, "written, as json, on SIGUSR1")
        ->type_name("FILE");
    app.add_option("-t,--timeout", options.timeout,
                   "with --once: keep trying for so many seconds, where it would else fail with "
                   "the first round of remotes")
        ->check(CLI::NonNegativeNumber)
        ->type_name("SECONDS");
}

void describeProcess(CLI::App& app, Options& options, Words& words) {
    app.add_flag("--disabled", options.disabled,
                 "begin with enableAgent false: nothing runs until it is set");
    app.add_option("--log-file", options.logFile, "log there too, besides standard error")
        ->type_name("FILE");
    app.add_option("-v,--verbose", words.logs,
                   "what is logged: off, emer, err, warn, info or dbg, for one destination "
                   "(console, syslog, file) or without one for console and log file [info]")
        ->allow_extra_args(false)
        ->type_name("[DESTINATION:]LEVEL");
    app.add_option("--pidfile", options.pidFile,
                   "our process id, written once signals are taken and our own server, if "
                   "any, listens")
        ->type_name("FILE");
}

void takeListen(std::vector<std::string> const& words, Options& options) {
    options.serves = words != std::vector<std::string>{"none"};
    if (!options.serves) return;
    try {
        for (std::string const& word : words) options.listen.push_back(parseListenAddress(word));
    } catch (Ovsdb::RemoteError const& e) {
        throw CLI::ValidationError("--listen", e.what());
    }
}

void take(Words const& words, Options& options) {
    try {
        if (!words.remotes.empty()) options.remotes = Ovsdb::parseRemotes(words.remotes);
    } catch (Ovsdb::RemoteError const& e) {
        throw CLI::ValidationError("--ovsdb", e.what());
    }
    takeListen(words.listen, options);
    for (std::string const& word : words.logs)
        if (std::string const wrong = takeLogWord(options, word); !wrong.empty())
            throw CLI::ValidationError("--verbose", wrong);
}

void checkListen(Options const& options) {
    for (ListenAddress const& address : options.listen) {
        bool const isOpen = address.kind != ListenAddress::Kind::tcp || options.tcpReads;
        if (!isOpen)
            throw CLI::ValidationError(
                "--listen",
                address.text() + ": who connects can't be learned; --tcp-readers lets all read");
        if (address.kind == ListenAddress::Kind::ssl && !options.tls.complete())
            throw CLI::ValidationError(
                "--listen",
                address.text() +
                    " needs a private key (-p), a certificate (-c) and an authority (-C)");
    }
}

void check(Options const& options) {
    checkListen(options);
    for (Ovsdb::Remote const& remote : options.remotes)
        if (remote.kind == Ovsdb::Remote::Kind::ssl && !options.tls.complete())
            throw CLI::ValidationError(
                "--ovsdb",
                remote.text() +
                    " needs a private key (-p), a certificate (-c) and an authority (-C)");
    if (options.once && options.disabled)
        throw CLI::ValidationError("--once", "prints nothing when --disabled");
}

std::string manualPage(CLI::App const& app) {
    return Manual::head(app, 8, VGWD_VERSION, "[OPTION]...") +
           ".SH DESCRIPTION\nMirrors the database of an OVSDB server, acts on its own "
           "configuration, and gives all of that state to other processes, such as "
           "\\fBvgwctl\\fR(1). The tree of that state is told in docs/agent.md.\n" +
           Manual::options(app) + ".SH SIGNALS\n" +
           Manual::item("SIGTERM, SIGINT", "end it, the clean way") +
           Manual::item("SIGHUP", "read the certificates and open the log files anew") +
           Manual::item("SIGUSR1", "write the dump file") +
           ".SH EXIT STATUS\n0 after a clean end, 1 after a failure.\n"
           ".SH SEE ALSO\nvgwctl(1), ovsdb\\-server(1), vtep(5)\n";
}

}  // namespace

std::optional<Options> parseOptions(int count, char const* const* words, int& exitCode) {
    CLI::App app("Keeps a typed, observable mirror of an OVSDB hardware_vtep database.", "vgwd");
    app.set_version_flag("-V,--version", "vgwd " VGWD_VERSION);
    Manual::tellsErrorsByName(app);
    Options options;
    Words said;
    describeServer(app, options, said);
    describeServing(app, options, said);
    describeOutput(app, options);
    describeProcess(app, options, said);
    app.add_flag("--man", said.wantsManual, "print the manual page")->group("");
    try {
        app.parse(count, words);
        if (said.wantsManual) {
            std::cout << manualPage(app) << std::flush;
            exitCode = 0;
            return std::nullopt;
        }
        take(said, options);
        check(options);
    } catch (CLI::ParseError const& e) {
        exitCode = app.exit(e) == 0 ? 0 : 1;
        return std::nullopt;
    }
    return options;
}

}  // namespace Vgwd
