// The files of a run: those that were asked for and those that they import, each read and parsed
// once.
//
// An imported file stands before the files that import it. Imports are followed without recursion,
// `deepest` levels at most; a circle is reported at the import that closes it.
#ifndef MODELC_CHECK_SOURCES_H
#define MODELC_CHECK_SOURCES_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <modelc/syntax/Diagnostics.h>
#include <modelc/syntax/Tree.h>

namespace Modelc {

struct SourceFile {
    std::string name;  // as diagnostics call it
    std::uint32_t file = 0;
    Tree::File tree;
    std::vector<std::size_t> imports;  // positions in Sources::files
    bool isEmitted = false;
};

// The text of an import: `path` as written, asked for by the file of that name. Gives the name by
// which the file is called from then on, and its text, or nothing.
struct ImportedText {
    std::string name;
    std::string text;
};
using ImportReader =
    std::function<std::optional<ImportedText>(std::string const& path, std::string const& asker)>;

class Sources {
  public:
    static constexpr std::size_t deepest = 64;
    static constexpr std::size_t mostFiles = 256;

    Sources(Diagnostics& diagnostics, ImportReader reader);

    void add(std::string name, std::string const& text);

    // Imports before importers.
    std::vector<SourceFile const*> ordered() const;
    bool damaged() const;
    SourceFile const& at(std::size_t index) const { return files_.at(index); }

  private:
    struct Open {
        std::size_t index;
        std::size_t nextImport;
    };

    std::size_t parse(std::string name, std::string const& text);
    std::optional<std::size_t> known(std::string const& name) const;
    void follow(std::size_t index);
    void descend(std::vector<Open>& open, Tree::Word const& path);
    bool isOpen(std::vector<Open> const& open, std::size_t index) const;

    Diagnostics& diagnostics_;
    ImportReader reader_;
    std::deque<SourceFile> files_;
    std::vector<std::size_t> order_;
};

}  // namespace Modelc

#endif
