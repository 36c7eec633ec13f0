#include <tests/modelc/TestFiles.h>

#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace ModelcTest {

namespace fs = std::filesystem;

fs::path tree() { return TREE; }

std::string textOf(fs::path const& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) throw std::runtime_error("cannot read " + path.string());
    return {std::istreambuf_iterator<char>(in), {}};
}

std::vector<std::string> linesOf(fs::path const& path) {
    std::istringstream in(textOf(path));
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

Modelc::Compilation compileFiles(fs::path const& folder, std::vector<std::string> const& names) {
    auto const read = [&](std::string const& path,
                          std::string const& asker) -> std::optional<Modelc::ImportedText> {
        fs::path const name = (fs::path(asker).parent_path() / path).lexically_normal();
        if (!fs::exists(folder / name)) return std::nullopt;
        return Modelc::ImportedText{name.string(), textOf(folder / name)};
    };
    std::vector<Modelc::Description> descriptions;
    for (std::string const& name : names) descriptions.push_back({name, textOf(folder / name)});
    return Modelc::compile(descriptions, read);
}

}  // namespace ModelcTest
