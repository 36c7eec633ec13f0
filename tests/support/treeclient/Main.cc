// Mounts parts of an agent's tree as any other process would, with the compiled classes, and does
// what it is told on standard input (Commands.h).
//
//     tree_client [--reconnect] [--copies N] ADDRESS [PATH | PATH:w]...
//
// Ends with 3 when the connection is lost and not made again.

#include <tests/support/treeclient/Commands.h>

#include <poll.h>
#include <unistd.h>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>

namespace {

using TreeClient::Connection;
using TreeClient::Connections;

Connections connectionsOf(int count, char** words) {
    bool reconnects = false;
    int copies = 1;
    int at = 1;
    for (; at < count && std::strncmp(words[at], "--", 2) == 0; ++at) {
        if (std::strcmp(words[at], "--reconnect") == 0) reconnects = true;
        if (std::strcmp(words[at], "--copies") == 0) copies = std::atoi(words[++at]);
    }
    Connections connections;
    std::string const address = at < count ? words[at++] : "";
    for (int n = 0; n < copies; ++n) {
        auto connection = std::make_unique<Connection>(address, reconnects, n > 0);
        for (int i = at; i < count; ++i) {
            std::string const path = words[i];
            bool const isWritable = path.ends_with(":w");
            connection->add(isWritable ? path.substr(0, path.size() - 2) : path, isWritable);
        }
        connections.push_back(std::move(connection));
    }
    return connections;
}

std::vector<pollfd> waitedFor(Connections const& connections) {
    std::vector<pollfd> waited{{STDIN_FILENO, POLLIN, 0}};
    for (auto const& one : connections)
        if (one->socket() >= 0)
            waited.push_back(
                {one->socket(), static_cast<short>(POLLIN | (one->wantsWrite() ? POLLOUT : 0)), 0});
    return waited;
}

// Lines that have come; false at the end of the input.
bool readLines(std::string& pending, Connections& connections) {
    char room[4096];
    long const got = ::read(STDIN_FILENO, room, sizeof room);
    if (got <= 0) return false;
    pending.append(room, static_cast<std::size_t>(got));
    for (std::size_t end = 0; (end = pending.find('\n')) != std::string::npos;) {
        std::puts(TreeClient::answer(connections, pending.substr(0, end)).c_str());
        pending.erase(0, end + 1);
    }
    return true;
}

}  // namespace

int main(int count, char** words) {
    ::signal(SIGPIPE, SIG_IGN);
    ::setvbuf(stdout, nullptr, _IOLBF, 0);
    Connections connections = connectionsOf(count, words);
    std::string pending;
    for (;;) {
        for (auto const& one : connections)
            if (!one->keep()) return 3;
        for (auto const& one : connections) one->service();
        auto waited = waitedFor(connections);
        bool const isWhole = waited.size() == connections.size() + 1;
        ::poll(waited.data(), waited.size(), isWhole ? 1000 : 20);
        if (waited[0].revents != 0 && !readLines(pending, connections)) return 0;
    }
}
