#include "Access.h"

namespace Sim {

using OpId = Qor::GenericIf::AttributeOp::OpId;

namespace {

Qor::QorType& typeNamed(char const* compiled) {
    auto const name = otherNames(compiled);
    return *Qor::QorType::type(nameOf(name));
}

}  // namespace

Described::Wrapper Described::wrapper(Qor::Entity const& entity) {
    return entity.fwkType()->genericIf_(const_cast<Qor::Entity*>(&entity), false);
}

Described::Wrapper Described::got(Qor::Entity const& entity, Qor::AttributeId id,
                                  Wrapper const& key) {
    return wrapper(entity)->attributeOp(id, OpId::opGet, key);
}

void Described::set(Qor::Entity& entity, Qor::AttributeId id, Wrapper const& key,
                    Wrapper const& value) {
    wrapper(entity)->attributeOp(id, OpId::opSet, key, value);
}

void Described::del(Qor::Entity& entity, Qor::AttributeId id, Wrapper const& key) {
    wrapper(entity)->attributeOp(id, OpId::opDel, key);
}

Described::Wrapper Described::listOf(Wrapper const& argument) {
    Qor::GenericIf::List::Queue queue;
    queue.enq(argument);
    return Qor::make<Qor::GenericIf::List_>(queue);
}

EntityPtr Described::made(char const* className, Wrapper const& argument) {
    Wrapper const list = listOf(argument);
    return typeNamed(className).genericIf(list.ptr(), false)->entity();
}

bool Described::isA(Qor::Entity const& entity, char const* className) {
    return entity.fwkType()->isA(typeNamed(className));
}

Qor::QorType& Described::valueType(Qor::Entity const& entity, Qor::AttributeId id) {
    return *entity.fwkType()->attr(id)->valueType();
}

Qor::QorType& Described::keyType(Qor::Entity const& entity, Qor::AttributeId id) {
    return *entity.fwkType()->attr(id)->keyType();
}

}  // namespace Sim
