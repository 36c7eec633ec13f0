#include "Picture.h"

#include <algorithm>

namespace Sim {

namespace {

struct Reference {
    std::string line;
    Qor::Entity const* target;
};

class Walk final : public FieldReader {
  public:
    explicit Walk(Picture& picture) : picture_(picture) {}

    void row(std::string const& path, Row const& row) {
        picture_.rows[path] = row;
        picture_.lines[path] = row.shape->title(*row.entity);
        paths_[row.entity.ptr()] = path;
        for (auto const& field : row.shape->fields) {
            at_ = path + "/" + field->name;
            field->show(*row.entity, row.shape->newborn(), *this);
        }
    }
    void value(std::string const& key, std::string const& text) override {
        picture_.lines[lineOf(key)] = text;
    }
    void reference(std::string const& key, EntityPtr const& target) override {
        references_.push_back({lineOf(key), target.ptr()});
    }
    void owned(std::string const& key, EntityPtr const& entity, Shape const& shape) override {
        std::string const here = at_;
        row(at_ + "/" + key, {entity, &shape});
        at_ = here;
    }
    void resolve() {
        for (auto const& [line, target] : references_) {
            auto const found = paths_.find(target);
            picture_.lines[line] =
                found == paths_.end() ? std::string(nowhere) : referenceTo(found->second);
        }
    }

  private:
    std::string lineOf(std::string const& key) const { return key.empty() ? at_ : at_ + "/" + key; }

    Picture& picture_;
    std::string at_;
    std::vector<Reference> references_;
    std::map<Qor::Entity const*, std::string> paths_;
};

class Owned final : public FieldReader {
  public:
    explicit Owned(std::vector<std::pair<std::string, Row>>& found) : found_(found) {}
    void value(std::string const&, std::string const&) override {}
    void reference(std::string const&, EntityPtr const&) override {}
    void owned(std::string const& key, EntityPtr const& entity, Shape const& shape) override {
        found_.emplace_back(at + "/" + key, Row{entity, &shape});
    }
    std::string at;

  private:
    std::vector<std::pair<std::string, Row>>& found_;
};

}  // namespace

Picture pictureOf(Row const& top) {
    Picture picture;
    Walk walk(picture);
    walk.row("", top);
    walk.resolve();
    return picture;
}

std::vector<std::pair<std::string, Row>> ownedBy(Row const& row, std::string const& path) {
    std::vector<std::pair<std::string, Row>> found;
    Owned owned(found);
    for (auto const& field : row.shape->fields) {
        if (!field->isOwning()) continue;
        owned.at = path + "/" + field->name;
        field->show(*row.entity, row.shape->newborn(), owned);
    }
    return found;
}

Row rowAt(Row const& top, std::string const& path) {
    Row row = top;
    for (std::string at; at != path;) {
        auto const children = ownedBy(row, at);
        auto const next = std::find_if(children.begin(), children.end(), [&](auto const& child) {
            return path == child.first || path.starts_with(child.first + "/");
        });
        if (next == children.end()) return {};
        at = next->first;
        row = next->second;
    }
    return row;
}

std::string referenceTo(std::string const& path) { return "-> " + path; }

std::string difference(Lines const& wanted, Lines const& there) {
    for (auto const& [path, value] : wanted) {
        auto const found = there.find(path);
        if (found == there.end()) return path + " is missing, wanted " + value.substr(0, 40);
        if (found->second != value) {
            return path + " is " + found->second.substr(0, 40) + ", wanted " + value.substr(0, 40);
        }
    }
    for (auto const& [path, value] : there) {
        if (!wanted.contains(path)) return path + " is too much: " + value.substr(0, 40);
    }
    return {};
}

std::uint64_t numberIn(std::string const& text) {
    return text.starts_with('#') ? std::stoull(text.substr(1)) : 0;
}

}  // namespace Sim
