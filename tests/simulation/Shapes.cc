#include "Shape.h"
#include "VgwShapes.h"

#include <qor/registry/QorType.h>

#include <array>
#include <memory>

namespace Sim {

namespace {

std::string plain(Qor::String8 const& text) { return std::string(text.view()); }

class EntryField final : public Field {
  public:
    explicit EntryField(Knowledge knowledge)
        : Field(258, "entry", FieldKind::children), knowledge_(knowledge) {}
    void show(Qor::Entity const& entity, Qor::Entity const&, FieldReader& reader) const override {
        auto const& dir = static_cast<Qor::Dir const&>(entity);
        for (auto at = dir.entryIteratorConst(); at; ++at) {
            EntityPtr const& child = at.value();
            reader.owned(plain(at.key()), child, shapeIn(knowledge_, *child));
        }
    }
    EntityPtr own(Qor::Entity& entity, std::string const& key, unsigned sort) const override {
        auto& dir = static_cast<Qor::Dir&>(entity);
        auto child = shapeNumbered(sort).make(knowledge_, key);
        dir.entryIs(nameOf(key), child);
        return child;
    }
    void disown(Qor::Entity& entity, std::string const& key) const override {
        static_cast<Qor::Dir&>(entity).entryDel(nameOf(key));
    }

  private:
    // A directory in the place of what has not been learned yet.
    Shape const& shapeNumbered(unsigned sort) const {
        auto const& all = shapes(knowledge_);
        std::size_t const place = sort % (all.size() + 1);
        bool const isKnown = place != all.size() && hasLearned(knowledge_, all[place]->name);
        return isKnown ? *all[place] : dirShape(knowledge_);
    }

    Knowledge const knowledge_;
};

class DirShape final : public Shape {
  public:
    explicit DirShape(Knowledge by) {
        knowledge = by;
        name = "Qor::Dir";
        isDirectory = true;
        fields.push_back(std::make_unique<EntryField>(by));
    }
    EntityPtr make(Knowledge, std::string const& text) const override {
        return Qor::make<Qor::Dir>(nameOf(text));
    }
};

// What can't stand where it stands, such as a compiled class in a process that has none.
class StrangeShape final : public Shape {
  public:
    EntityPtr make(Knowledge, std::string const& text) const override {
        return Qor::make<Qor::Dir>(nameOf(text));
    }
    std::string title(Qor::Entity const& entity) const override {
        return "strange: " + plain(entity.fwkType()->fullName());
    }
};

std::vector<Shape const*> joined(std::vector<Shape const*> all,
                                 std::vector<Shape const*> const& more) {
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

bool areTied = false;
bool areLate = false;

}  // namespace

Cast::Cast(bool hasTies, bool hasLate) {
    areTied = hasTies;
    areLate = hasLate;
}
Cast::~Cast() { areTied = areLate = false; }
bool Cast::hasTies() { return areTied; }
bool Cast::hasLate() { return areLate; }

Qor::Entity const& Shape::newborn() const {
    if (!newborn_) newborn_ = make(knowledge, "newborn");
    return *newborn_;
}

Field const* Shape::field(Qor::AttributeId id) const {
    for (auto const& one : fields) {
        if (one->id == id) return one.get();
    }
    return nullptr;
}

namespace {

struct Casts {
    explicit Casts(Knowledge knowledge) {
        if (knowledge == Knowledge::described) learnClasses();
        auto const lab = labShapes(knowledge);
#ifdef SIMULATION_OF_LAB_ONLY
        usual = lab;
#else
        usual = joined(vgwShapes(knowledge), lab);
#endif
        tied = joined(lab, tiesShapes(knowledge));
        auto const late = lateShapes(knowledge);
        usualAndLate = joined(usual, late);
        tiedAndLate = joined(tied, late);
    }
    std::vector<Shape const*> const& now() const {
        if (areLate) return areTied ? tiedAndLate : usualAndLate;
        return areTied ? tied : usual;
    }

  private:
    std::vector<Shape const*> usual;
    std::vector<Shape const*> tied;
    std::vector<Shape const*> usualAndLate;
    std::vector<Shape const*> tiedAndLate;
};

}  // namespace

std::vector<Shape const*> const& shapes(Knowledge knowledge) {
    static Casts const compiled(Knowledge::compiled);
    if (knowledge == Knowledge::compiled) return compiled.now();
    static Casts const described(Knowledge::described);
    return described.now();
}

Shape const& dirShape(Knowledge knowledge) {
    static auto const all = [] {
        std::array<std::unique_ptr<DirShape const>, waysToKnow> made;
        for (unsigned way = 0; way < waysToKnow; ++way) {
            made[way] = std::make_unique<DirShape>(static_cast<Knowledge>(way));
        }
        return made;
    }();
    static_cast<void>(shapes(knowledge));  // what is to stand in it is known from here on
    return *all[static_cast<unsigned>(knowledge)];
}

Shape const& shapeIn(Knowledge knowledge, Qor::Entity const& entity) {
    static StrangeShape const strange;
    std::string const there = plain(entity.fwkType()->fullName());
    if (there == dirShape().name) return dirShape(knowledge);
    std::string const name = compiledNames(there);
    if (namesFor(knowledge, name) != there) return strange;
    for (Shape const* const shape : shapes(knowledge)) {
        if (shape->name == name) return *shape;
    }
    return strange;
}

}  // namespace Sim
