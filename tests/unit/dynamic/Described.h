// The library's classes a second time in one process: described as a peer would, under the name
// space Dyn instead of Vgw, so that each class stands beside its description.
#ifndef TESTS_UNIT_DYNAMIC_DESCRIBED_H
#define TESTS_UNIT_DYNAMIC_DESCRIBED_H

#include <qor/dynamic/DescribedTypes.h>
#include <qor/generic/GenericIf.h>

#include <string>

namespace Described {

/// "Vgw::" within a text becomes "Dyn::".
inline std::string renamed(std::string_view text) {
    std::string result(text);
    for (std::size_t at = 0; (at = result.find("Vgw::", at)) != std::string::npos;) {
        result.replace(at, 3, "Dyn");
    }
    return result;
}

inline Qor::Name renamed(Qor::Name const& name) { return Qor::Name(renamed(name.view())); }

inline Qor::TypeDescription renamed(Qor::TypeDescription description) {
    auto const rename = [](Qor::Name& name) { name = renamed(name); };
    rename(description.fullName);
    rename(description.base);
    for (auto& argument : description.constructorArgs) rename(argument.type);
    for (auto& attribute : description.attributes) {
        rename(attribute.valueType);
        rename(attribute.keyType);
        for (auto& argument : attribute.arguments) rename(argument.type);
    }
    for (auto& initial : description.initials) {
        initial.text = Qor::String8(renamed(initial.text.view()));
    }
    return description;
}

/// Gives a description to `types` as it comes from a peer.
inline void take(Qor::DescribedTypes& types, Qor::TypeDescription const& description) {
    using Token = Qor::NboAttrLog::Out::TransactToken;
    auto const out = Qor::make<Qor::NboAttrLog::Out>();
    out->beginFrame(Qor::NboAttrLog::FrameKind::link, {});
    out << Token::begin;
    description.put(out);
    out << Token::end;
    auto const in = Qor::make<Qor::NboAttrLog::In>();
    while (!out->unsent().empty()) {
        auto const taken = in->receive(out->unsent());
        out->sentInc(taken);
        if (taken == 0) in->grow();
    }
    Qor::NboAttrLog::Frame frame;
    if (!in->nextFrame(frame)) throw std::runtime_error("a frame that is not whole");
    types.take(*in);
    in->frameDone(frame);
}

/// Takes a set in.
inline void take(std::vector<Qor::TypeDescription> const& descriptions) {
    Qor::DescribedTypes types{Qor::DescribedTypes::Quota()};
    for (auto const& description : descriptions) take(types, description);
    types.complete();
}

/// All classes of the library, under their second names.
inline void describeAll() {
    std::vector<Qor::TypeDescription> all;
    for (Qor::QorType* const type : Qor::QorType::types()) {
        bool const isOurs = type->fullName().view().starts_with("Vgw::");
        if (isOurs) all.push_back(renamed(Qor::TypeDescription::of(*type)));
    }
    take(all);
}

/// The description beside a class.
inline Qor::QorType& twin(Qor::QorType& type) {
    static bool const isDone = (describeAll(), true);
    static_cast<void>(isDone);
    return *Qor::QorType::type(Qor::Name(renamed(type.fullName().view())));
}

inline Qor::QorType& twin(char const* compiled) {
    return twin(*Qor::QorType::type(Qor::Name(compiled)));
}

}  // namespace Described

#endif
