#include <modelc/check/Check.h>

#include <map>
#include <set>
#include <vector>

#include <modelc/check/AccessorCheck.h>
#include <modelc/check/Context.h>
#include <modelc/check/DeclareUnits.h>
#include <modelc/check/EntityCheck.h>
#include <modelc/check/ValueCheck.h>

namespace Modelc {
namespace {

class Checker {
  public:
    Checker(Sources const& sources, Model& model, Diagnostics& diagnostics)
        : sources_(sources), model_(model), context_{model, symbols_, diagnostics} {
        context_.isIncomplete = sources.damaged();
    }

    void run() {
        declare();
        each(&DeclaredUnit::enumerations,
             [&](auto const& tree, auto& made) { values_.enumeration(tree, made); });
        each(&DeclaredUnit::values,
             [&](auto const& tree, auto& made) { values_.value(tree, made); });
        auto const entities = &DeclaredUnit::entities;
        each(entities, [&](auto const& tree, auto& made) { entities_.base(tree, made); });
        each(entities, [&](auto const& tree, auto& made) { entities_.members(tree, made); });
        each(entities, [&](auto const& tree, auto& made) { entities_.ownership(tree, made); });
        each(entities, [&](auto const& tree, auto& made) { checkAccessors(context_, tree, made); });
        markCollected();
    }

  private:
    void declare() {
        DeclareUnits pass(context_);
        pass.builtins();
        std::map<SourceFile const*, Unit*> made;
        for (SourceFile const* source : sources_.ordered()) {
            units_.push_back(pass.unit(*source));
            Unit* const unit = units_.back().unit;
            made[source] = unit;
            for (std::size_t const index : source->imports) {
                Unit const* const imported = made.at(&sources_.at(index));
                unit->imports.push_back(imported);
                symbols_.visibleIs(unit, imported);
            }
        }
    }

    // Runs `pass` over all classes of one sort, in the order of their declaration.
    template <typename List, typename Pass>
    void each(List DeclaredUnit::*list, Pass pass) {
        for (DeclaredUnit const& declared : units_) {
            context_.unit = declared.unit;
            context_.file = declared.source->file;
            for (auto const& [tree, made] : declared.*list) pass(*tree, *made);
        }
    }

    // The classes that owning collections name carry the link of those collections, unless a base
    // does.
    void markCollected() {
        std::set<Entity const*> named;
        for (Entity const& entity : model_.entities) {
            for (Member const& member : entity.members) {
                auto const* attribute = std::get_if<Attribute>(&member);
                bool const isOwning =
                    attribute != nullptr && attribute->kind == AttributeKind::owning;
                if (isOwning && attribute->type != nullptr) named.insert(attribute->type->entity);
            }
        }
        for (Entity& entity : model_.entities) {
            Entity const* above = entity.base;
            while (above != nullptr && !named.contains(above)) above = above->base;
            entity.isCollected = named.contains(&entity) && above == nullptr;
        }
    }

    Sources const& sources_;
    Model& model_;
    SymbolTable symbols_;
    Context context_;
    std::vector<DeclaredUnit> units_;
    ValueCheck values_{context_};
    EntityCheck entities_{context_};
};

}  // namespace

void check(Sources const& sources, Model& model, Diagnostics& diagnostics) {
    Checker(sources, model, diagnostics).run();
}

}  // namespace Modelc
