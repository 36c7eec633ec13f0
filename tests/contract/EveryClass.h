// The fixture of the suites over all entity classes: an entity with a recorder of its own class.
#ifndef TESTS_CONTRACT_EVERY_CLASS_H
#define TESTS_CONTRACT_EVERY_CLASS_H

#include <map>

#include <gtest/gtest.h>

#include "EntityClass.h"

namespace Contract {

class EveryClass : public testing::TestWithParam<EntityClass const*> {
  protected:
    EntityClass const& class_ = *GetParam();
    EntityPtr entity_ = class_.make();
    AnyRecorder recorder_ = class_.record(entity_);

    AllTold take() const { return recorder_.take(); }

    /// Calls `visit` for each attribute that is a `Face`, those of the classes above included.
    template <class Face, class Visit>
    void forEach(Visit&& visit) const {
        for (Attribute const* const attribute : class_.attributes) {
            if (auto const* const face = dynamic_cast<Face const*>(attribute)) {
                SCOPED_TRACE(attribute->name);
                visit(*face);
            }
        }
    }
    /// The same for what a setter can change.
    template <class Visit>
    void forEachChangeable(Visit&& visit) const {
        forEach<Attribute>([&](Attribute const& a) {
            if (a.kind != Kind::operation && a.kind != Kind::constField) {
                visit(a);
            }
        });
    }
    /// What all attributes hold, by id.
    std::map<Qor::AttributeId, std::string> held(Qor::Entity const& entity) const {
        std::map<Qor::AttributeId, std::string> all;
        for (Attribute const* const attribute : class_.attributes) {
            all[attribute->id] = attribute->held(entity);
        }
        return all;
    }
    static AllTold toldOf(Keyed const& attribute, unsigned key) {
        return {{attribute.id, attribute.key(key)}};
    }
};

struct ClassName {
    std::string operator()(testing::TestParamInfo<EntityClass const*> const& info) const {
        return info.param->name.substr(std::string("Vgw::").size());
    }
};

}  // namespace Contract

#endif
