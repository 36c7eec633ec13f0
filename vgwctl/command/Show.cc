#include <vgwctl/command/Show.h>

#include <vgwctl/output/ValueText.h>
#include <vgwctl/state/Place.h>

#include <nlohmann/json.hpp>

#include <qor/generic/GenericIfEntity.h>

#include <ostream>

namespace Vgwctl {
namespace {

using Qor::Entity;

constexpr std::size_t step = 2;

std::string nameOf(Entity const& entity) {
    std::string const path(entity.uriPath().view());
    return path.substr(path.rfind('/') + 1);
}

// The name stands in the line above.
bool isTold(Entity const& entity, Qor::QorAttr const& attribute) {
    return attribute.id() == Qor::entityNameId && nameOf(entity) == entity.name().view();
}

class Shower {
  public:
    Shower(Context& context, bool hasValues)
        : out_(context.out()),
          form_(context.options().style.data),
          isColored_(hasColor(context.options())),
          hasValues_(hasValues) {}

    void show(Entity& entity, std::size_t indent) {
        std::string const title(indent == 0 ? entity.uriPath().view() : nameOf(entity));
        std::string kind(entity.fwkType()->fullName().view());
        if (std::string_view const state = entryStateOf(entity); !state.empty())
            kind.append(", ").append(state);
        out_ << std::string(indent, ' ') << colored(printable(title), "1") << "  "
             << colored(kind, "2") << '\n';
        if (hasValues_) showValues(entity, indent + step);
        showChildren(entity, indent + step);
    }

  private:
    std::string colored(std::string const& text, char const* code) const {
        return isColored_ ? "\033[" + std::string(code) + "m" + text + "\033[0m" : text;
    }

    void showValues(Entity& entity, std::size_t indent) {
        Qor::GenericIf::Ptr const wrapper = wrapped(entity);
        for (Qor::QorAttr const* const attribute : heldAttributes(*entity.fwkType())) {
            if (holdsChildren(entity, *attribute)) continue;
            Value const value = valueOf(*wrapper, *attribute);
            if (value.isNothing() || isTold(entity, *attribute)) continue;
            out_ << std::string(indent, ' ') << attribute->name().view() << ": "
                 << textOf(value, form_) << '\n';
        }
    }

    // Children under the name of their attribute, unless it is a directory's only one.
    void showChildren(Entity& entity, std::size_t indent) {
        Qor::QorAttr const* last = nullptr;
        bool const isDirectory = dynamic_cast<Qor::Dir*>(&entity) != nullptr;
        forEachChild(entity, [&](Qor::QorAttr const& attribute, Entity& child) {
            bool const isGrouped = !isDirectory && attribute.flags().isCollection();
            if (isGrouped && &attribute != last)
                out_ << std::string(indent, ' ') << attribute.name().view() << '\n';
            last = &attribute;
            show(child, indent + (isGrouped ? step : 0));
        });
    }

    std::ostream& out_;
    TextForm const form_;
    bool const isColored_;
    bool const hasValues_;
};

nlohmann::json jsonTree(Entity& entity, bool hasValues) {
    nlohmann::json tree{{"path", std::string(entity.uriPath().view())},
                        {"class", std::string(entity.fwkType()->fullName().view())}};
    if (std::string_view const state = entryStateOf(entity); !state.empty()) tree["state"] = state;
    if (hasValues) {
        Qor::GenericIf::Ptr const wrapper = wrapped(entity);
        nlohmann::json values = nlohmann::json::object();
        for (Qor::QorAttr const* const attribute : heldAttributes(*entity.fwkType()))
            if (!holdsChildren(entity, *attribute))
                values[std::string(attribute->name().view())] =
                    jsonOf(valueOf(*wrapper, *attribute));
        tree["values"] = std::move(values);
    }
    nlohmann::json children = nlohmann::json::object();
    forEachChild(entity, [&](Qor::QorAttr const& attribute, Entity& child) {
        children[std::string(attribute.name().view())].push_back(jsonTree(child, hasValues));
    });
    tree["children"] = std::move(children);
    return tree;
}

ExitCode runEither(Context& context, Arguments const& arguments, bool hasValues) {
    Entity& root = context.root();
    Entity::Ptr const entity =
        arguments.operands.empty() ? Entity::Ptr(&root) : neededEntity(arguments.operands[0]);
    if (context.options().style.format == Format::json) {
        context.out() << jsonText(jsonTree(*entity, hasValues)) << '\n';
    } else {
        Shower(context, hasValues).show(*entity, 0);
    }
    return ExitCode::success;
}

}  // namespace

ExitCode runShow(Context& context, Arguments const& arguments) {
    return runEither(context, arguments, true);
}

ExitCode runTree(Context& context, Arguments const& arguments) {
    return runEither(context, arguments, false);
}

}  // namespace Vgwctl
