// modelc [--out DIR] [--list] [--registry] [-I DIR]... FILE.model...
//
// Compiles descriptions of classes to C++. Writes below DIR, and only the files whose text has
// changed, so that what needs no compiling is not compiled. --list prints the names of the files
// instead of writing them, --registry the rows of the type registry. Imports are looked for beside
// the importing file and then in each -I folder. Exit codes: 0 done, 1 an error in a description,
// or a file that cannot be read or written, 2 wrong usage.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include <modelc/Compile.h>

namespace {

namespace fs = std::filesystem;

constexpr int failed = 1;
constexpr int misused = 2;

struct Options {
    std::string out;
    bool list = false;
    bool registry = false;
    std::vector<std::string> folders;
    std::vector<std::string> files;
};

std::optional<Options> parse(std::vector<std::string> const& arguments) {
    Options result;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        std::string const& argument = arguments[i];
        bool const hasValue = i + 1 < arguments.size();
        if (argument == "--list") {
            result.list = true;
        } else if (argument == "--registry") {
            result.registry = true;
        } else if (argument == "--out" && hasValue) {
            result.out = arguments[++i];
        } else if (argument == "-I" && hasValue) {
            result.folders.push_back(arguments[++i]);
        } else if (!argument.starts_with("-")) {
            result.files.push_back(argument);
        } else {
            return std::nullopt;
        }
    }
    bool const doesSomething = result.list || result.registry || !result.out.empty();
    if (result.files.empty() || !doesSomething) return std::nullopt;
    return result;
}

std::optional<std::string> read(fs::path const& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in || fs::is_directory(path)) return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(in), {});
}

class Imports {
  public:
    explicit Imports(std::vector<std::string> const& folders) : folders_(folders) {}

    std::optional<Modelc::ImportedText> operator()(std::string const& path,
                                                   std::string const& asker) const {
        std::vector<fs::path> tried{fs::path(asker).parent_path() / path};
        for (std::string const& folder : folders_) tried.push_back(fs::path(folder) / path);
        for (fs::path const& one : tried) {
            std::optional<std::string> text = read(one);
            if (text)
                return Modelc::ImportedText{one.lexically_normal().string(), std::move(*text)};
        }
        return std::nullopt;
    }

  private:
    std::vector<std::string> folders_;
};

bool write(fs::path const& path, std::string const& text) {
    if (read(path) == text) return true;
    std::error_code ignored;
    fs::create_directories(path.parent_path(), ignored);
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text;
    out.close();
    if (!out) std::cerr << "modelc: " << path.string() << " cannot be written\n";
    return static_cast<bool>(out);
}

int run(Options const& options) {
    std::vector<Modelc::Description> descriptions;
    for (std::string const& file : options.files) {
        std::optional<std::string> text = read(file);
        if (!text) {
            std::cerr << "modelc: " << file << " cannot be read\n";
            return failed;
        }
        descriptions.push_back({fs::path(file).lexically_normal().string(), std::move(*text)});
    }
    Modelc::Compilation const done = Modelc::compile(descriptions, Imports(options.folders));
    for (std::string const& error : done.errors) std::cerr << error << '\n';
    if (!done.errors.empty()) return failed;
    if (options.registry) std::cout << done.registrations;
    bool isWritten = true;
    for (Modelc::OutputFile const& file : done.files) {
        if (options.list) std::cout << file.path << '\n';
        if (!options.out.empty())
            isWritten = write(fs::path(options.out) / file.path, file.text) && isWritten;
    }
    return isWritten ? 0 : failed;
}

}  // namespace

int main(int argc, char** argv) {
    std::optional<Options> const options = parse({argv + 1, argv + argc});
    if (!options) {
        std::cerr << "usage: modelc [--out DIR] [--list] [--registry] [-I DIR]... FILE.model...\n";
        return misused;
    }
    return run(*options);
}
