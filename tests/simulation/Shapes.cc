#include "Shape.h"
#include "VgwShapes.h"

#include <qor/registry/QorType.h>

namespace Sim {

namespace {

std::string plain(Qor::String8 const& text) { return std::string(text.view()); }

class EntryField final : public Field {
  public:
    EntryField() : Field(258, "entry", FieldKind::children) {}
    void show(Qor::Entity const& entity, Qor::Entity const&, FieldReader& reader) const override {
        auto const& dir = static_cast<Qor::Dir const&>(entity);
        for (auto at = dir.entryIteratorConst(); at; ++at) {
            EntityPtr const& child = at.value();
            reader.owned(plain(at.key()), child, shapeNamed(plain(child->fwkType()->fullName())));
        }
    }
    EntityPtr own(Qor::Entity& entity, std::string const& key, unsigned sort) const override {
        auto const& all = shapes();
        Shape const& shape =
            sort % (all.size() + 1) == all.size() ? dirShape() : *all[sort % (all.size() + 1)];
        auto& dir = static_cast<Qor::Dir&>(entity);
        auto child = shape.make(key);
        dir.entryIs(nameOf(key), child);
        return child;
    }
    void disown(Qor::Entity& entity, std::string const& key) const override {
        static_cast<Qor::Dir&>(entity).entryDel(nameOf(key));
    }
};

class DirShape final : public Shape {
  public:
    DirShape() {
        name = "Qor::Dir";
        fields.push_back(std::make_unique<EntryField>());
    }
    EntityPtr make(std::string const& text) const override {
        return Qor::make<Qor::Dir>(nameOf(text));
    }
};

std::vector<Shape const*> joined(std::vector<Shape const*> all,
                                 std::vector<Shape const*> const& more) {
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

bool areTied = false;

}  // namespace

Cast::Cast(bool hasTies) { areTied = hasTies; }
Cast::~Cast() { areTied = false; }
bool Cast::hasTies() { return areTied; }

Qor::Entity const& Shape::newborn() const {
    if (!newborn_) newborn_ = make("newborn");
    return *newborn_;
}

std::vector<Shape const*> const& shapes() {
#ifdef SIMULATION_OF_LAB_ONLY
    static auto const usual = labShapes();
#else
    static auto const usual = joined(vgwShapes(), labShapes());
#endif
    static auto const tied = joined(labShapes(), tiesShapes());
    return areTied ? tied : usual;
}

Shape const& dirShape() {
    static DirShape const shape;
    return shape;
}

Shape const& shapeNamed(std::string const& name) {
    for (Shape const* const shape : shapes()) {
        if (shape->name == name) return *shape;
    }
    return dirShape();
}

}  // namespace Sim
