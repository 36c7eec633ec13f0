// A tree of entities through the generic interface alone: what it holds, as text, and values for
// every type, as texts. Names of types are told as those of the compiled classes.
#ifndef TESTS_UNIT_DYNAMIC_TREE_H
#define TESTS_UNIT_DYNAMIC_TREE_H

#include <qor/generic/GenericIf.h>
#include <qor/generic/GenericList.h>

#include <map>
#include <random>
#include <string>
#include <vector>

namespace Tree {

using Wrapper = Qor::GenericIf::Ptr;
using OpId = Qor::GenericIf::AttributeOp::OpId;
using Random = std::mt19937;

inline Wrapper wrapperOf(Qor::Ptr<Qor::Entity> const& entity) {
    return entity->fwkType()->genericIf_(entity.ptr(), false);
}

inline std::string plain(std::string_view text) {
    std::string result(text);
    for (std::size_t at = 0; (at = result.find("Dyn::", at)) != std::string::npos;) {
        result.replace(at, 3, "Vgw");
    }
    return result;
}

/// The attributes that a class adds to what every entity has, operations apart.
inline std::vector<Qor::QorAttr const*> attributesOf(Qor::QorType const& type) {
    std::vector<Qor::QorAttr const*> result;
    for (auto const& attribute : type.attributes()) {
        bool const isHeld = attribute->id() >= 256 && !attribute->introspection().isFunction();
        if (isHeld) result.push_back(attribute.ptr());
    }
    return result;
}

inline void dumpInto(std::map<std::string, std::string>& lines, std::string const& path,
                     Wrapper const& at) {
    lines[path] = plain(at->fwkType()->fullName().view());
    lines[path + "/name"] = at->entity()->qorName().charPtr();
    for (auto const* attribute : attributesOf(*at->fwkType())) {
        std::string const here = path + "/" + attribute->name().charPtr();
        bool const isChild = attribute->flags().isInstantiating();
        auto const put = [&](std::string const& where, Wrapper const& value) {
            if (isChild && value->entity()) return dumpInto(lines, where, value);
            lines[where] = plain(value->strRep().view());
        };
        if (!attribute->flags().isCollection()) {
            put(here, at->attributeOp(attribute->id()));
            continue;
        }
        for (auto step = at->attributeIteratorConst(attribute->id()); step; ++step) {
            put(here + "[" + plain(step.key()->strRep().view()) + "]", step.value());
        }
    }
}

/// Everything that is held from `entity` down; equal texts for equal trees.
inline std::string dump(Qor::Ptr<Qor::Entity> const& entity) {
    std::map<std::string, std::string> lines;
    dumpInto(lines, "", wrapperOf(entity));
    std::string text;
    for (auto const& [where, what] : lines) text += where + " = " + what + "\n";
    return text;
}

inline std::string textOf(Random& random, Qor::QorType const& type);

inline std::string oneOf(Random& random, std::vector<std::string> const& texts) {
    return texts[random() % texts.size()];
}

inline std::string literalOf(Random& random, Qor::QorType const& type) {
    auto const literals = type.attributes();
    return std::string("'") + literals[random() % literals.size()]->name().charPtr() + "'";
}

inline std::string compositeOf(Random& random, Qor::QorType const& type) {
    std::string text = "Value('" + std::string(type.fullName().view()) + "', ** {";
    char const* between = "'";
    for (auto const& field : type.attributes()) {
        if (!field->flags().isConstructed()) continue;
        text += between + std::string(field->name().charPtr()) +
                "': " + textOf(random, *field->valueType());
        between = ", '";
    }
    return text + "})";
}

/// The text of some value of the type.
inline std::string textOf(Random& random, Qor::QorType const& type) {
    static std::map<std::string, std::vector<std::string>> const pools{
        {"bool", {"true", "false"}},
        {"U8", {"0", "7", "255"}},
        {"U16", {"0", "1", "4094", "65535"}},
        {"U32", {"0", "5", "16777216", "4294967295"}},
        {"U64", {"0", "1", "18446744073709551615"}},
        {"double", {"0", "0.25", "1700000000.5"}},
        {"Qor::String8", {"''", "'a'", "'b b'", "'\\xff\\n'", "'" + std::string(40000, 'x') + "'"}},
        {"Qor::Name", {"'n1'", "'n2'", "'n3'", "'n4'"}},
        {"Kelp::IpAddr", {"'192.0.2.1'", "'198.51.100.7'", "'203.0.113.255'"}},
        {"Kelp::EthAddr", {"'00:00:5e:00:53:01'", "'00:00:5e:00:53:ff'"}},
        {"Vxlan::Vni", {"0", "5000", "16777215"}},
    };
    auto const pool = pools.find(std::string(type.fullName().view()));
    if (pool != pools.end()) return oneOf(random, pool->second);
    return type.isEnumType() ? literalOf(random, type) : compositeOf(random, type);
}

/// A key: a short one, as keys are.
inline std::string keyOf(Random& random, Qor::QorType const& type) {
    if (type.fullName() == "Qor::String8") return oneOf(random, {"'k1'", "'k2'", "'k3'", "'k4'"});
    return textOf(random, type);
}

inline Wrapper valueOf(Qor::QorType& type, std::string const& text) {
    return type.genericIfFromStrep(text.c_str(), false);
}

inline Wrapper listOf(Wrapper const& argument) {
    Qor::GenericIf::List::Queue queue;
    queue.enq(argument);
    return Qor::make<Qor::GenericIf::List_>(queue);
}

inline void rowsInto(std::vector<Wrapper>& rows, Wrapper const& at) {
    rows.push_back(at);
    for (auto const* attribute : attributesOf(*at->fwkType())) {
        if (!attribute->flags().isInstantiating()) continue;
        if (!attribute->flags().isCollection()) {
            auto const child = at->attributeOp(attribute->id());
            if (child->entity()) rowsInto(rows, child);
            continue;
        }
        for (auto step = at->attributeIteratorConst(attribute->id()); step; ++step) {
            rowsInto(rows, step.value());
        }
    }
}

/// All entities of a tree.
inline std::vector<Wrapper> rows(Qor::Ptr<Qor::Entity> const& root) {
    std::vector<Wrapper> result;
    rowsInto(result, wrapperOf(root));
    return result;
}

/// Something that the attribute can refer to, or null.
inline Wrapper targetFor(Random& random, Qor::Ptr<Qor::Entity> const& root,
                         Qor::QorType const& type) {
    std::vector<Wrapper> fitting;
    for (Wrapper const& row : rows(root)) {
        if (row->fwkType()->isA(type)) fitting.push_back(row);
    }
    return fitting.empty() ? nullptr : fitting[random() % fitting.size()];
}

inline void changeMember(Random& random, Qor::Ptr<Qor::Entity> const& root, Wrapper const& row,
                         Qor::QorAttr const& attribute) {
    auto const key = valueOf(*attribute.keyType(), keyOf(random, *attribute.keyType()));
    if (random() % 4 == 0) {
        row->attributeOp(attribute.id(), OpId::opDel, key);
    } else if (attribute.flags().isInstantiating()) {
        row->attributeOp(attribute.id(), OpId::opSet, nullptr, listOf(key));
    } else if (attribute.flags().isEntity()) {
        auto const target = targetFor(random, root, *attribute.valueType());
        if (target) row->attributeOp(attribute.id(), OpId::opSet, key, target);
    } else {
        auto const value = valueOf(*attribute.valueType(), textOf(random, *attribute.valueType()));
        row->attributeOp(attribute.id(), OpId::opSet, key, value);
    }
}

/// Removes references to what stands in no tree any more: a mount can't bring them over.
inline void dropDangling(Qor::Ptr<Qor::Entity> const& root) {
    for (Wrapper const& row : rows(root)) {
        for (auto const* attribute : attributesOf(*row->fwkType())) {
            bool const refers = attribute->flags().isCollection() &&
                                attribute->flags().isEntity() &&
                                !attribute->flags().isInstantiating();
            if (!refers) continue;
            for (auto at = row->attributeIteratorConst(attribute->id()); at; ++at) {
                if (at.value()->entity()->parent()) continue;
                row->attributeOp(attribute->id(), OpId::opDel, at.key());
            }
        }
    }
}

/// Changes one attribute of one entity somewhere in the tree.
inline void change(Random& random, Qor::Ptr<Qor::Entity> const& root) {
    auto const all = rows(root);
    Wrapper const& row = all[random() % all.size()];
    auto const attributes = attributesOf(*row->fwkType());
    Qor::QorAttr const& attribute = *attributes[random() % attributes.size()];
    if (attribute.flags().isCollection()) return changeMember(random, root, row, attribute);
    if (attribute.flags().isInstantiating()) {
        if (random() % 8 == 0) {
            row->attributeOp(attribute.id(), OpId::opDel);
            return;
        }
        auto const name = valueOf(*Qor::Name::_fwkType(), oneOf(random, {"'c1'", "'c1'", "'c2'"}));
        row->attributeOp(attribute.id(), OpId::opSet, nullptr, listOf(name));
    } else if (attribute.flags().isWritable()) {
        auto const value = valueOf(*attribute.valueType(), textOf(random, *attribute.valueType()));
        row->attributeOp(attribute.id(), OpId::opSet, nullptr, value);
    }
}

}  // namespace Tree

#endif
