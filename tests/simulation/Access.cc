#include "Access.h"

namespace Sim {

using OpId = Qor::GenericIf::AttributeOp::OpId;

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

EntityPtr Described::made(std::string const& fullName, Wrapper const& argument) {
    Wrapper const list = listOf(argument);
    return Qor::QorType::type(nameOf(fullName))->genericIf(list.ptr(), false)->entity();
}

bool Described::isA(Qor::Entity const& entity, std::string_view compiledName) {
    for (Qor::QorType const* type = entity.fwkType(); type; type = type->base()) {
        if (compiledNames(std::string(type->fullName().view())) == compiledName) return true;
    }
    return false;
}

Qor::QorType& Described::valueType(Qor::Entity const& entity, Qor::AttributeId id) {
    return *entity.fwkType()->attr(id)->valueType();
}

Qor::QorType& Described::keyType(Qor::Entity const& entity, Qor::AttributeId id) {
    return *entity.fwkType()->attr(id)->keyType();
}

}  // namespace Sim
