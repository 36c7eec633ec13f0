#include <modelc/emit/AttrLogMember.h>

#include <modelc/emit/AttrLogKeyedMember.h>
#include <modelc/emit/TypeText.h>

namespace Modelc {
namespace {

class ValueMember : public AttrLogMember {
  public:
    ValueMember(Entity const& entity, Attribute const& attribute)
        : AttrLogMember(entity, attribute, "StreamScalar") {}

    std::string declarations() const override { return fillIn("virtual void $handler$();\n"); }
    std::string definitions() const override {
        return fillIn(R"(
void $Class$::QorNboAttrLogSa::$handler$() {
    Qor::serializeScalar<$Stream$>(*this);
}
)");
    }
};

class TextMember : public AttrLogMember {
  public:
    TextMember(Entity const& entity, Attribute const& attribute)
        : AttrLogMember(entity, attribute, "StreamText") {}

    std::string declarations() const override {
        return fillIn(R"(
virtual void $handler$();
bool $serializer$();
)");
    }
    std::string definitions() const override {
        return fillIn(R"(
void $Class$::QorNboAttrLogSa::$handler$() {
    $serializer$();
}

bool $Class$::QorNboAttrLogSa::$serializer$() {
    return Qor::serializeText<$Stream$>(*this);
}
)");
    }
};

}  // namespace

AttrLogMember::AttrLogMember(Entity const& entity, Attribute const& attribute,
                             std::string const& base)
    : entity_(entity), attribute_(attribute) {
    Spelling const spelling(attribute.name);
    holes_ = {
        {"Class", entity.name},
        {"Base", base},
        {"name", spelling.name()},
        {"setter", spelling.setter()},
        {"remover", spelling.remover()},
        {"handler", spelling.handler()},
        {"Attr", spelling.descriptor()},
        {"Stream", spelling.streamDescriptor()},
        {"serializer", spelling.serializer()},
        {"sing", spelling.memberSerializer()},
        {"coll", spelling.collectionSerializer()},
        {"adapterSetter", spelling.adapterSetter()},
        {"adapterRemover", spelling.adapterRemover()},
        {"dirty", spelling.dirty()},
        {"dirtyBuilder", spelling.dirtyBuilder()},
        {"DirtyClass", spelling.dirtyClass()},
        {"DirtyIterator", spelling.dirtyIteratorClass()},
        {"synced", spelling.synced()},
    };
}

std::string AttrLogMember::stream() const {
    bool const canBeRemoved = attribute_.key != nullptr || attribute_.kind == AttributeKind::child;
    std::string const del = canBeRemoved ? "static void del(auto& entity, auto&&... key) { "
                                           "entity.$remover$(key...); }\n"
                                         : "";
    return fill(R"(
struct $Class$::QorNboAttrLogSa::$Stream$ : Qor::$Base$<$Class$::$Attr$> {
    static void set(auto& entity, auto&&... value) { entity.$setter$(value...); }
    $del$
    static void on(auto& adapter, auto&&... key) { adapter.$handler$(key...); }
};
)",
                with(holes_, {{"del", fill(del, holes_)}}));
}

std::string AttrLogMember::flowOut() const {
    return fillIn(R"(
bool $dirty$() const { return isDirty<$Stream$>(); }
void $dirty$Is(bool dirty) { isDirtyIs<$Stream$>(dirty); }
)");
}

std::string AttrLogMember::forwarding() const {
    return fillIn(R"(
void $handler$() override { forward(&QorNboAttrLogSa::$handler$); }
)");
}

std::unique_ptr<AttrLogMember> makeAttrLogMember(Entity const& entity, Attribute const& attribute) {
    switch (attribute.kind) {
        case AttributeKind::constructed:
            return nullptr;
        case AttributeKind::scalar:
            if (attribute.type->kind == TypeKind::builtin &&
                attribute.type->builtin == Builtin::text)
                return std::make_unique<TextMember>(entity, attribute);
            return std::make_unique<ValueMember>(entity, attribute);
        case AttributeKind::set:
            return std::make_unique<AttrLogKeyedMember>(entity, attribute, "StreamFlagMember",
                                                        "void", "bool value, bool deleted",
                                                        "value, deleted", "serializeFlagMember");
        case AttributeKind::map:
            return std::make_unique<AttrLogKeyedMember>(
                entity, attribute, "StreamTextMember", "bool",
                "Qor::String8 const& value, bool deleted", "value, deleted", "serializeTextMember");
        case AttributeKind::reference:
            return std::make_unique<AttrLogKeyedMember>(
                entity, attribute, "StreamReference", "void",
                "Qor::Ptr<" + typeText(*attribute.type, *entity.unit) + "> const& value", "value",
                "serializeReference");
        case AttributeKind::owning:
            return std::make_unique<AttrLogChildMapMember>(entity, attribute);
        case AttributeKind::child:
            return std::make_unique<AttrLogChildMember>(entity, attribute);
    }
    return nullptr;
}

}  // namespace Modelc
