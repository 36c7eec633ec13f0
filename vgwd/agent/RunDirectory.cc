#include <vgwd/agent/RunDirectory.h>

#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace Vgwd {
namespace {

namespace fs = std::filesystem;

Qor::String8 text(std::string const& path) { return std::string_view(path); }

}  // namespace

bool makeRunDirectory(std::string const& directory, Ovsdb::LogSink const& log) {
    fs::path const path = fs::absolute(directory).lexically_normal();
    std::error_code error;
    fs::path const folder = path.has_filename() ? path : path.parent_path();
    fs::create_directories(folder.parent_path(), error);
    if (::mkdir(folder.c_str(), S_IRWXU) == 0) return true;
    std::error_code const refused(errno, std::generic_category());
    fs::file_status const status = fs::status(folder, error);
    if (!fs::is_directory(status))
        throw std::runtime_error("run directory " + folder.string() +
                                 " can't be made: " + refused.message());
    if ((status.permissions() & (fs::perms::group_write | fs::perms::others_write)) !=
        fs::perms::none)
        log(Ovsdb::LogLevel::warning,
            "run directory " + folder.string() + " can be written by others than its owner");
    return false;
}

void letThroughRunDirectory(std::string const& directory, Access const& access) {
    auto const& [one, other] = std::pair(access.readGroup, access.writeGroup);
    if (!one && !other) return;
    bool const areTwo = one && other && *one != *other;
    gid_t const group = one.value_or(other.value_or(0));
    mode_t const mode = S_IRWXU | S_IXGRP | (areTwo ? S_IXOTH : 0);
    bool const isDone =
        (areTwo || ::chown(directory.c_str(), static_cast<uid_t>(-1), group) == 0) &&
        ::chmod(directory.c_str(), mode) == 0;
    if (!isDone)
        throw std::runtime_error("run directory " + directory + " can't be opened to the group: " +
                                 std::generic_category().message(errno) +
                                 " (vgwd has to be a member of it)");
}

FileLock lockRunDirectory(std::string const& directory) {
    return {runFile(directory, "vgwd.lock"),
            "run directory " + fs::absolute(directory).lexically_normal().string() +
                " is used by another vgwd"};
}

std::string runFile(std::string const& directory, char const* name) {
    return (fs::absolute(directory) / name).string();
}

void describeRunDirectory(Vgw::Config& config, Options const& options) {
    std::string const& directory = options.runDirectory;
    config.ovsdbRunDirIs(text(fs::absolute(directory).string()));
    config.ovsdbLogDirIs(text(fs::absolute(directory).string()));
    if (!options.tls.certificate.empty()) {
        fs::path const certificate = fs::absolute(options.tls.certificate);
        config.ovsdbCertDirIs(text(certificate.parent_path().string()));
        config.ovsdbCertFileIs(text(certificate.string()));
    }
    if (!options.remotes.empty()) return;
    config.ovsdbDataDirIs(text(fs::absolute(directory).string()));
    config.ovsdbSocketFileIs(text(runFile(directory, "server.ctl")));
    config.ovsdbPidFileIs(text(runFile(directory, "server.pid")));
}

}  // namespace Vgwd
