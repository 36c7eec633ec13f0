#include <vgwd/agent/Options.h>

#include <CLI/CLI.hpp>

namespace Vgwd {
namespace {

void describe(CLI::App& app, Options& options, std::string& remotes) {
    app.add_option("--ovsdb", remotes,
                   "servers of the database, tried in turn: unix:PATH, tcp:HOST:PORT, "
                   "ssl:HOST:PORT, parted by commas; "
                   "without it an ovsdb-server of our own is started in the run directory")
        ->type_name("REMOTE[,REMOTE...]");
    app.add_option("--run-dir", options.runDirectory,
                   "where our own server has its database and sockets")
        ->capture_default_str();
    app.add_option("--schema", options.schemaFile, "schema of our own server's database")
        ->capture_default_str();
    app.add_option("-p,--private-key", options.tls.privateKey, "our private key, for ssl: (PEM)")
        ->type_name("FILE");
    app.add_option("-c,--certificate", options.tls.certificate, "our certificate, for ssl: (PEM)")
        ->type_name("FILE");
    app.add_option("-C,--ca-cert", options.tls.authority,
                   "authority that signed the server's certificate (PEM)")
        ->type_name("FILE");
    app.add_flag("--once", options.once, "print the mirror once it is in step, and end");
    app.add_option("-f,--format", options.format, "of what --once prints: json or tree")
        ->check(CLI::IsMember({"json", "tree"}))
        ->capture_default_str();
    app.add_flag("--watch", options.watch,
                 "print each change of the mirror, attribute by attribute");
    app.add_option("--dump-file", options.dumpFile, "written, as json, on SIGUSR1")
        ->type_name("FILE");
    app.add_option("-t,--timeout", options.timeout,
                   "with --once: keep trying for so many seconds, where it would else fail with "
                   "the first round of remotes")
        ->check(CLI::NonNegativeNumber)
        ->type_name("SECONDS");
    app.add_option("--log-file", options.logFile, "log there too, besides standard error")
        ->type_name("FILE");
    app.add_option("-v,--verbose", options.logLevel, "what is logged: off, err, warn, info or dbg")
        ->check(CLI::IsMember({"off", "err", "warn", "info", "dbg"}))
        ->capture_default_str();
    app.add_option("--pidfile", options.pidFile, "our process id, written once signals are taken")
        ->type_name("FILE");
}

void check(Options const& options) {
    for (Ovsdb::Remote const& remote : options.remotes)
        if (remote.kind == Ovsdb::Remote::Kind::ssl && !options.tls.complete())
            throw CLI::ValidationError(
                "--ovsdb",
                remote.text() +
                    " needs a private key (-p), a certificate (-c) and an authority (-C)");
}

}  // namespace

std::optional<Options> parseOptions(int count, char const* const* words, int& exitCode) {
    CLI::App app("Keeps a typed, observable mirror of an OVSDB hardware_vtep database.", "vgwd");
    app.set_version_flag("-V,--version", "vgwd " VGWD_VERSION);
    Options options;
    std::string remotes;
    describe(app, options, remotes);
    try {
        app.parse(count, words);
        try {
            if (!remotes.empty()) options.remotes = Ovsdb::parseRemotes(remotes);
        } catch (Ovsdb::RemoteError const& e) {
            throw CLI::ValidationError("--ovsdb", e.what());
        }
        check(options);
    } catch (CLI::ParseError const& e) {
        exitCode = app.exit(e) == 0 ? 0 : 1;
        return std::nullopt;
    }
    return options;
}

}  // namespace Vgwd
