#include <modelc/check/Sources.h>

#include <algorithm>
#include <utility>

#include <modelc/syntax/Parser.h>

namespace Modelc {

Sources::Sources(Diagnostics& diagnostics, ImportReader reader)
    : diagnostics_(diagnostics), reader_(std::move(reader)) {}

void Sources::add(std::string name, std::string const& text) {
    std::optional<std::size_t> index = known(name);
    if (!index) index = parse(std::move(name), text);
    files_[*index].isEmitted = true;
    follow(*index);
}

std::size_t Sources::parse(std::string name, std::string const& text) {
    SourceFile& source = files_.emplace_back();
    source.file = diagnostics_.fileIs(name);
    source.name = std::move(name);
    source.tree = Parser(source.file, text, diagnostics_).parse();
    return files_.size() - 1;
}

std::optional<std::size_t> Sources::known(std::string const& name) const {
    auto const found = std::find_if(files_.begin(), files_.end(),
                                    [&](SourceFile const& f) { return f.name == name; });
    if (found == files_.end()) return std::nullopt;
    return static_cast<std::size_t>(found - files_.begin());
}

// Depth first with a stack of its own; a file is ordered once all its imports are.
void Sources::follow(std::size_t index) {
    std::vector<Open> open{{index, 0}};
    while (!open.empty()) {
        Open& top = open.back();
        auto const& imports = files_[top.index].tree.imports;
        if (top.nextImport < imports.size()) {
            descend(open, imports[top.nextImport++].path);
            continue;
        }
        if (std::find(order_.begin(), order_.end(), top.index) == order_.end()) {
            order_.push_back(top.index);
        }
        open.pop_back();
    }
}

void Sources::descend(std::vector<Open>& open, Tree::Word const& path) {
    std::size_t const asker = open.back().index;
    Place const place{files_[asker].file, path.at};
    if (open.size() >= deepest || files_.size() >= mostFiles) {
        diagnostics_.report(place, "imports nest too deep",
                            "at most " + std::to_string(deepest) + " levels and " +
                                std::to_string(mostFiles) + " files");
        return;
    }
    std::optional<ImportedText> const read = reader_(path.text, files_[asker].name);
    if (!read) {
        diagnostics_.report(place, quoted(path.text) + " cannot be read",
                            "a description beside this one or in a folder given by -I");
        return;
    }
    std::optional<std::size_t> index = known(read->name);
    if (index && isOpen(open, *index)) {
        diagnostics_.report(place, "a circle of imports through " + quoted(path.text),
                            "imports without a circle");
        return;
    }
    bool const isNew = !index;
    if (isNew) index = parse(read->name, read->text);
    auto& imports = files_[asker].imports;
    if (std::find(imports.begin(), imports.end(), *index) == imports.end())
        imports.push_back(*index);
    if (isNew) open.push_back({*index, 0});
}

bool Sources::isOpen(std::vector<Open> const& open, std::size_t index) const {
    return std::any_of(open.begin(), open.end(), [&](Open const& o) { return o.index == index; });
}

std::vector<SourceFile const*> Sources::ordered() const {
    std::vector<SourceFile const*> result;
    for (std::size_t const index : order_) result.push_back(&files_[index]);
    return result;
}

bool Sources::damaged() const {
    return std::any_of(files_.begin(), files_.end(),
                       [](SourceFile const& f) { return f.tree.damaged; });
}

}  // namespace Modelc
