#include "Author.h"

#include "VgwShapes.h"

#include <algorithm>
#include <optional>

namespace Sim {

namespace {

constexpr unsigned keysEach = 4;
constexpr char const* knot = "/entry/s3";
constexpr std::size_t deepest = 90;  // characters of a path

unsigned sortOf(std::string const& className) {
    auto const& all = shapes(Knowledge::compiled);
    for (unsigned sort = 0; sort < all.size(); ++sort) {
        if (all[sort]->name == className) return sort;
    }
    return static_cast<unsigned>(all.size());
}

}  // namespace

Fresh Author::fresh() {
    std::uint64_t const number = ++plan_.number;
    std::string text = "#" + std::to_string(number) + ".";
    std::size_t const kind = dice_.below(60);
    if (kind == 0) return {number, {}};
    std::size_t length = dice_.below(12);
    if (kind == 1) length = 800;
    if (hasLongTexts_ && kind == 2) length = 30000 + dice_.below(60000);
    text.append(length, static_cast<char>('a' + number % 26));
    return {number, text};
}

std::string Author::lineOf(std::string const& path, Field const& field, unsigned key) const {
    std::string const line = path + "/" + field.name;
    return field.kind == FieldKind::scalar ? line : line + "/" + field.keyText(key);
}

void Author::note(std::string const& line, std::string const& text, bool isGone) {
    plan_.set(line, text, number_);
    touch(line);
    if (isGone) forget(line);
}

// The last word about a line decides how sure it is.
void Author::touch(std::string const& line) {
    if (isInStep_ || number_ == 0) {
        plan_.unsure.erase(line);
    } else {
        plan_.unsure.insert(line);
    }
}

void Author::forget(std::string const& line) {
    plan_.lines.erase(line);
    if (number_ == 0) ++plan_.removals[line];
}

bool Author::mayWrite(std::string const& row, Field const& field, unsigned key) const {
    if (ownerOf(row) != shared) return isMine(row);
    if (field.kind == FieldKind::scalar) {
        return isRival_ || static_cast<unsigned>(field.id) % count_ == number_;
    }
    return isRival_ || key % count_ == number_;
}

// Down from the top, a random number of steps; where keys tie mostly the one that stays and has
// them.
std::pair<std::string, Row> Author::anyRow() {
    if (Cast::hasTies() && !dice_.oneIn(4)) {
        if (Row const row = rowAt(top_, knot); row.entity) return {knot, row};
    }
    std::pair<std::string, Row> at{"", top_};
    while (!dice_.oneIn(4)) {
        auto below = ownedBy(at.second, at.first);
        std::erase_if(below, [this](auto const& row) {
            unsigned const owner = ownerOf(row.first);
            return (owner != shared && owner != number_) || !isHere(row.first);
        });
        if (below.empty()) break;
        at = dice_.oneOf(below);
    }
    return at;
}

unsigned Author::anyKey() {
    auto const place = static_cast<unsigned>(dice_.below(keysEach));
    return place * count_ + number_;
}

void Author::change() {
    auto const [path, row] = anyRow();
    Field const& field = *row.shape->fields[dice_.below(row.shape->fields.size())];
    changeField(path, row, field);
}

void Author::changeField(std::string const& path, Row const& row, Field const& field) {
    if (field.isOwning()) return changeOwned(path, row, field);
    unsigned const key = anyKey();
    if (!mayWrite(path, field, key)) return;
    if (field.kind == FieldKind::scalar) return put(path, row, field, 0);
    if (dice_.oneIn(3)) return erase(path, row, field, key);
    if (field.kind == FieldKind::references) return refer(path, row, field, key);
    put(path, row, field, key);
}

// What a field holds under a key; none where there is nothing.
class Held final : public FieldReader {
  public:
    Held(Row const& row, Field const& field, unsigned key) : key_(field.keyText(key)) {
        field.show(*row.entity, row.shape->newborn(), *this);
    }
    void value(std::string const& key, std::string const& text) override {
        if (key == key_) held = text;
    }
    void reference(std::string const&, EntityPtr const&) override {}
    void owned(std::string const&, EntityPtr const&, Shape const&) override {}

    std::optional<std::string> held;

  private:
    std::string const key_;
};

// A copy may hold again what its author has replaced: the source, which has not heard of that yet,
// has said it once more. To write that then is no change, and goes nowhere. So it is of flags,
// whose values are not each another.
void Author::noteWrite(std::string const& line, Held const& before,
                       std::optional<std::string> const& written) {
    auto const planned = plan_.lines.find(line);
    bool const isAsPlanned =
        planned == plan_.lines.end() ? !before.held : before.held == planned->second;
    bool const isSure = isAsPlanned && !plan_.unsure.contains(line);
    bool const goesNowhere = number_ != 0 && before.held == written && !isSure;
    note(line, written.value_or(""), !written);
    if (goesNowhere) plan_.unsure.insert(line);
}

void Author::put(std::string const& path, Row const& row, Field const& field, unsigned key) {
    std::string const line = lineOf(path, field, key);
    if (field.kind == FieldKind::flags) {
        Held const before(row, field, key);
        return noteWrite(line, before, field.put(*row.entity, key, fresh()));
    }
    std::string const text = field.put(*row.entity, key, fresh());
    bool const isInitial =
        field.kind == FieldKind::scalar && text == field.initial(row.shape->newborn());
    note(line, text, isInitial);
}

void Author::erase(std::string const& path, Row const& row, Field const& field, unsigned key) {
    Held const before(row, field, key);
    field.erase(*row.entity, key);
    noteWrite(lineOf(path, field, key), before, std::nullopt);
}

void Author::refer(std::string const& path, Row const& row, Field const& field, unsigned key) {
    for (int tries = 0; tries < 6; ++tries) {
        auto const [targetPath, target] = anyRow();
        // Rows that come and go refer to no others that do: a circle of such would never end.
        bool const isCircle = ownerOf(path) != shared && ownerOf(targetPath) != shared;
        if (isCircle || !field.mayRefer(*target.entity)) continue;
        field.refer(*row.entity, key, *target.entity);
        std::string const line = lineOf(path, field, key);
        note(line, referenceTo(targetPath), false);
        plan_.references[line] = {path, field.id, key};
        return;
    }
}

void Author::changeOwned(std::string const& path, Row const& row, Field const& field) {
    bool const isShared = ownerOf(path) == shared;
    if (isShared && field.kind == FieldKind::child && number_ != 0) return;
    std::string const name =
        std::string(1, static_cast<char>('a' + number_)) + std::to_string(dice_.below(3));
    if (field.kind == FieldKind::child) {
        auto const below = ownedBy(row, path);
        bool const stays = std::any_of(below.begin(), below.end(), [&](auto const& child) {
            return child.first.starts_with(path + "/" + field.name + "/s");
        });
        if (stays) return;
    }
    if (dice_.oneIn(3)) return disown(path, row, field, name);
    own(path, row, field, name);
}

// Whether a process on the way to the source does not know the class.
bool Author::isLeftOut(Shape const& shape) const {
    return std::any_of(above_.begin(), above_.end(),
                       [&](Knowledge knowledge) { return !hasLearned(knowledge, shape.name); });
}

// Mostly one of those that are learned late, where there are such.
unsigned Author::anySort() {
    auto const& all = shapes(Knowledge::compiled);
    auto const directory = static_cast<unsigned>(all.size());
    auto sort = static_cast<unsigned>(dice_.below(all.size() + 1));
    if (Cast::hasLate() && dice_.oneIn(2)) {
        auto const late = lateShapes(Knowledge::compiled).size();
        sort = directory - 1 - static_cast<unsigned>(dice_.below(late));
    }
    bool const isAvoided = isCareful_ && sort != directory && isLeftOut(*all[sort]);
    return isAvoided ? directory : sort;
}

void Author::own(std::string const& path, Row const& row, Field const& field,
                 std::string const& name) {
    if (path.size() > deepest) return;
    std::string const line = path + "/" + field.name + "/" + name;
    bool const isSingle = field.kind == FieldKind::child;
    bool const isEntry = row.shape->isDirectory;
    if (isHere(line) && !isEntry) return;
    // An entry is replaced, and so is a single child of another name.
    if (isSingle || isHere(line)) disown(path, row, field, isSingle ? std::string() : name);
    // It may have been left out above, and have gone here since.
    plan_.eraseRow(line);
    auto const child = field.own(*row.entity, name, anySort());
    for (auto const& [childPath, owned] : ownedBy(row, path)) {
        if (childPath != line) continue;
        note(line, owned.shape->title(*child), false);
        if (isLeftOut(*owned.shape)) plan_.unsure.insert(line);
    }
}

void Author::disown(std::string const& path, Row const& row, Field const& field,
                    std::string const& name) {
    std::string const below = path + "/" + field.name + "/";
    for (auto const& [child, owned] : ownedBy(row, path)) {
        bool const isIt = name.empty() || field.kind == FieldKind::child ? child.starts_with(below)
                                                                         : child == below + name;
        if (!isIt) continue;
        plan_.trace(number_, child + " goes");
        // Away from the source references go first: a cut in between would leave them behind.
        bool const before = number_ != 0 || dice_.oneIn(2);
        if (before) dropReferencesTo(child);
        field.disown(*row.entity, child.substr(below.size()));
        if (!before) dropReferencesTo(child);
        if (number_ == 0) {
            for (auto at = plan_.lines.lower_bound(child);
                 at != plan_.lines.end() && at->first.starts_with(child); ++at) {
                ++plan_.removals[at->first];
            }
        }
        for (auto at = plan_.lines.lower_bound(child);
             at != plan_.lines.end() && at->first.starts_with(child); ++at) {
            touch(at->first);
        }
        plan_.eraseRow(child);
    }
}

void Author::eraseAt(Plan::Place const& place) {
    Row const holder = rowAt(top_, place.row);
    if (holder.entity) holder.shape->field(place.field)->erase(*holder.entity, place.key);
}

void Author::dropReferencesTo(std::string const& row) {
    std::vector<std::string> lines;
    for (auto const& [line, text] : plan_.lines) {
        if (text == referenceTo(row) || text.starts_with(referenceTo(row) + "/")) {
            lines.push_back(line);
        }
    }
    for (auto const& line : lines) {
        auto const& place = plan_.references[line];
        eraseAt(place);
        forget(line);
    }
}

void Author::dropLooseReferences() {
    auto const picture = pictureOf(top_);
    for (auto const& [line, text] : picture.lines) {
        bool const isMine = number_ == 0 || plan_.authors[line] == number_;
        if (text != nowhere || !isMine) continue;
        auto const& place = plan_.references[line];
        eraseAt(place);
        forget(line);
    }
}

void Author::letGo(Row const& row) const {
    for (auto const& field : row.shape->fields) {
        if (field->kind != FieldKind::references) continue;
        for (unsigned key = 0; key < keysEach * count_; ++key) field->erase(*row.entity, key);
    }
    for (auto const& [path, below] : ownedBy(row, {})) letGo(below);
}

void Author::found() {
    auto const stay = [this](std::string const& path, std::string const& fieldName,
                             std::string const& name, unsigned sort = 0) {
        Row const row = rowAt(top_, path);
        if (!row.shape) return;  // of a class that is not part of this simulation
        for (auto const& field : row.shape->fields) {
            if (field->name != fieldName) continue;
            field->own(*row.entity, name, sort);
        }
    };
    stay("", "entry", "s0", sortOf("Vgw::Status"));
    stay("", "entry", "s1", sortOf("Lab::Branch"));
    stay("", "entry", "s2", sortOf("Qor::Dir"));
    stay("/entry/s0", "ovsdb", "s0");
    for (char const* const each : {"root", "physicalPort", "logicalSwitch", "physicalLocatorSet",
                                   "physicalSwitchRaw", "physicalLocatorRaw"}) {
        stay("/entry/s0/ovsdb/s0", each, "s0");
    }
    stay("/entry/s1", "node", "s0");
    stay("/entry/s1/node/s0", "leaf", "s0");
    stay("/entry/s2", "entry", "s0", sortOf("Vgw::CliConfig"));
    stay("/entry/s2", "entry", "s1", sortOf("Vgw::McastMacsLocal"));
    if (Cast::hasTies()) {
        stay("", "entry", "s3", sortOf("Ties::Knot"));
        stay("/entry/s3", "target", "s0");
    }
    for (auto const& [path, row] : pictureOf(top_).rows) {
        plan_.set(path, row.shape->title(*row.entity), 0);
    }
}

void Author::writeAll() {
    for (auto const& [path, row] : pictureOf(top_).rows) {
        if (ownerOf(path) != shared) continue;
        for (auto const& field : row.shape->fields) {
            if (field->isOwning() || field->kind == FieldKind::references) continue;
            unsigned const key = number_;
            bool const isScalar = field->kind == FieldKind::scalar;
            if (isScalar && static_cast<unsigned>(field->id) % count_ != number_) continue;
            put(path, row, *field, isScalar ? 0 : key);
        }
    }
}

}  // namespace Sim
