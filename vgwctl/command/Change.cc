#include <vgwctl/command/Change.h>

#include <vgwctl/output/ValueText.h>
#include <vgwctl/state/Operand.h>
#include <vgwctl/state/Place.h>

#include <qor/generic/GenericException.h>
#include <qor/generic/GenericList.h>
#include <qor/tree/EntityPath.h>

#include <ostream>

namespace Vgwctl {
namespace {

using Qor::Entity;
using Qor::GenericIf;
using OpId = GenericIf::AttributeOp::OpId;
using Words = std::span<std::string const>;

// What an entity is held by: the path of its owner, the attribute there, and the key.
struct Spot {
    std::string owner;
    std::string attribute;
    std::string key;
};

Words behind(std::vector<std::string> const& words, std::size_t count) {
    return Words(words).subspan(std::min(count, words.size()));
}

std::string parentOf(std::string const& path) {
    std::size_t const slash = path.rfind('/');
    if (slash == 0 || slash == std::string::npos)
        throw Failure(path + " has no place in something that could hold it");
    return path.substr(0, slash);
}

std::string lastOf(std::string const& path) {
    return std::string(Qor::pathElements(Qor::String8(std::string_view(path))).back().view());
}

bool isDirectory(Entity const& entity) { return dynamic_cast<Qor::Dir const*>(&entity) != nullptr; }

// A path is OWNER/NAME in a directory, OWNER/ATTRIBUTE/NAME elsewhere, OWNER/ATTRIBUTE for an only
// child.
Spot spotOf(std::string const& path) {
    std::string const parent = parentOf(path);
    if (Entity::Ptr const owner = entityAt(parent)) {
        if (isDirectory(*owner)) return {parent, "entry", lastOf(path)};
        return {parent, lastOf(path), ""};
    }
    std::string const owner = parentOf(parent);
    if (!entityAt(owner)) throw absent(parent);
    return {owner, lastOf(parent), lastOf(path)};
}

void needWritable(Qor::QorAttr const& attribute, Operand const& operand) {
    std::string const& name = operand.attribute;
    if (attribute.introspection().isFunction()) throw Failure(name + " is an operation: use call");
    // What is not held, but follows from the rest or is the process's own, does not travel.
    bool const isHeld = attribute.flags().isCollection() || attribute.flags().isStored();
    if (!isHeld || !attribute.flags().isWritable() || attribute.flags().isConstant())
        throw Failure(name + " can't be changed");
    if (attribute.keyType() == nullptr && operand.key) throw Failure(name + " takes no key");
    if (attribute.keyType() != nullptr && !operand.key)
        throw Failure(name + " is a collection: write " + name + ":KEY=VALUE");
    if (attribute.flags().isInstantiating())
        throw Failure(name + " holds entities of its own: use create and del");
}

// All are understood before the first is done.
struct Assignment {
    Qor::AttributeId id;
    GenericIf::Ptr key;
    GenericIf::Ptr value;
};

Assignment assignmentOf(Qor::QorType const& type, std::string const& word) {
    Operand const operand = operandOf(word);
    if (operand.relation != Operand::Relation::equal)
        throw Failure(word + ": expected ATTRIBUTE[:KEY]=VALUE");
    Qor::QorAttr const& attribute = neededAttribute(type, operand.attribute);
    needWritable(attribute, operand);
    std::string const& name = operand.attribute;
    return {attribute.id(),
            operand.key ? valueFrom(*attribute.keyType(), *operand.key, name) : nullptr,
            valueFrom(*attribute.valueType(), operand.value, name)};
}

std::vector<Assignment> assignmentsOf(Qor::QorType const& type, Words words) {
    std::vector<Assignment> assignments;
    for (std::string const& word : words) assignments.push_back(assignmentOf(type, word));
    return assignments;
}

void assign(Entity& entity, std::vector<Assignment> const& assignments) {
    GenericIf::Ptr const wrapper = wrapped(entity, false);
    for (Assignment const& one : assignments)
        wrapper->attributeOp(one.id, OpId::opSet, one.key, one.value);
}

// As many words as there are arguments.
void needArguments(std::span<Qor::QorAttr::Argument const> arguments, Words words,
                   std::string const& what) {
    if (words.size() == arguments.size()) return;
    std::string wanted;
    for (auto const& argument : arguments)
        wanted += " " + std::string(argument.name.view()) + ":" + std::string(argument.type.view());
    throw Failure(what + " takes" + (wanted.empty() ? " no arguments" : wanted));
}

Qor::Ptr<GenericIf::List_> listOf(std::span<Qor::QorAttr::Argument const> arguments, Words words,
                                  std::string const& what) {
    needArguments(arguments, words, what);
    auto list = Qor::make<GenericIf::List_>();
    for (std::size_t n = 0; n < words.size(); ++n)
        list->enq(
            valueFrom(neededType(arguments[n].type.view()), words[n], arguments[n].name.view()));
    return list;
}

std::size_t plainWords(Words words) {
    std::size_t count = 0;
    while (count < words.size() && words[count].find('=') == std::string::npos) ++count;
    return count;
}

GenericIf::Ptr nameValue(std::string const& name) {
    return valueFrom(neededType("Qor::Name"), name, "name");
}

// A new entity of the class that the first word names, with its arguments behind it.
void createEntry(Entity& directory, std::string const& name, Words words) {
    if (words.empty() || plainWords(words) == 0)
        throw Failure("create in a directory needs a class: create PATH CLASS [ARGUMENT]...");
    Qor::QorType& type = neededType(words[0]);
    std::size_t const count = plainWords(words);
    auto const list = listOf(type.constructorArgs(), words.subspan(1, count - 1),
                             "the constructor of " + std::string(type.fullName().view()));
    auto const assignments = assignmentsOf(type, words.subspan(count));
    GenericIf::Ptr const made = type.genericIf(list.ptr(), false);
    assign(*made->entity(), assignments);
    wrapped(directory, false)
        ->attributeOp(neededAttribute(*directory.fwkType(), "entry").id(), OpId::opSet,
                      nameValue(name), made);
}

void createChild(Entity& owner, Spot const& spot, Words words) {
    Qor::QorAttr const& attribute = neededAttribute(*owner.fwkType(), spot.attribute);
    if (!attribute.flags().isInstantiating()) throw Failure(spot.attribute + " makes no entities");
    auto const assignments = assignmentsOf(*attribute.valueType(), words);
    std::vector<std::string> const arguments{spot.key.empty() ? spot.attribute : spot.key};
    auto const list = listOf(attribute.arguments(), arguments, spot.attribute);
    GenericIf::Ptr const made =
        wrapped(owner, false)->attributeOp(attribute.id(), OpId::opSet, nullptr, list);
    assign(*made->entity(), assignments);
}

void needOperands(Operand const& operand, std::string const& word) {
    if (operand.relation != Operand::Relation::none)
        throw Failure(word + ": expected ATTRIBUTE[:KEY]");
}

}  // namespace

ExitCode runGet(Context& context, Arguments const& arguments) {
    std::string const& path = arguments.operands[0];
    context.root();
    if (!entityAt(path) && arguments.has("--if-exists")) return ExitCode::success;
    Entity::Ptr const entity = neededEntity(path);
    for (std::string const& word : behind(arguments.operands, 1)) {
        Operand const operand = operandOf(word);
        needOperands(operand, word);
        Value const value = valueAt(operand, *entity);
        bool const isJson = context.options().style.format == Format::json;
        TextForm const form = isJson ? TextForm::json : context.options().style.data;
        context.out() << textOf(value, form) << '\n';
    }
    return ExitCode::success;
}

ExitCode runSet(Context& context, Arguments const& arguments) {
    std::string const& path = arguments.operands[0];
    Entity::Ptr const entity = context.writable(path);
    assign(*entity, assignmentsOf(*entity->fwkType(), behind(arguments.operands, 1)));
    return ExitCode::success;
}

ExitCode runCreate(Context& context, Arguments const& arguments) {
    std::string const& path = arguments.operands[0];
    context.root();
    if (entityAt(path) && arguments.has("--may-exist")) return ExitCode::success;
    if (entityAt(path)) throw Failure(path + " exists already");
    Spot const spot = spotOf(path);
    Entity::Ptr const owner = context.writable(spot.owner);
    Words const words = behind(arguments.operands, 1);
    if (isDirectory(*owner)) {
        createEntry(*owner, spot.key, words);
    } else {
        createChild(*owner, spot, words);
    }
    return ExitCode::success;
}

namespace {

// Returns whether it was there.
bool removeEntity(Context& context, std::string const& path) {
    context.root();
    Entity::Ptr const entity = entityAt(path);
    if (!entity) return false;
    Spot const spot = spotOf(path);
    Entity::Ptr const owner = context.writable(spot.owner);
    Qor::QorAttr const& attribute = neededAttribute(*owner->fwkType(), spot.attribute);
    GenericIf::Ptr const key = attribute.keyType() != nullptr
                                   ? valueFrom(*attribute.keyType(), spot.key, spot.attribute)
                                   : nullptr;
    wrapped(*owner, false)->attributeOp(attribute.id(), OpId::opDel, key);
    return true;
}

// Of the member that a word names; without a key if it is not there, and may be absent.
Assignment removalOf(Entity& entity, std::string const& word, bool mayBeAbsent) {
    Operand const operand = operandOf(word);
    needOperands(operand, word);
    Qor::QorAttr const& attribute = neededAttribute(*entity.fwkType(), operand.attribute);
    needWritable(attribute, operand);
    if (!operand.key) throw Failure(word + ": expected ATTRIBUTE:KEY; other values are set");
    GenericIf::Ptr const key = valueFrom(*attribute.keyType(), *operand.key, operand.attribute);
    bool const isThere =
        wrapped(entity)->attributeOp(attribute.id(), OpId::opExists, key)->strRep() == "true";
    if (!isThere && !mayBeAbsent)
        throw absent("a member " + *operand.key + " of " + operand.attribute);
    return {attribute.id(), isThere ? key : nullptr, nullptr};
}

}  // namespace

ExitCode runDel(Context& context, Arguments const& arguments) {
    std::string const& path = arguments.operands[0];
    bool const mayBeAbsent = arguments.has("--if-exists");
    if (arguments.operands.size() == 1) {
        if (!removeEntity(context, path) && !mayBeAbsent) throw absent(path);
        return ExitCode::success;
    }
    if (mayBeAbsent) {
        context.root();
        if (!entityAt(path)) return ExitCode::success;
    }
    Entity::Ptr const entity = context.writable(path);
    std::vector<Assignment> removals;
    for (std::string const& word : behind(arguments.operands, 1))
        removals.push_back(removalOf(*entity, word, mayBeAbsent));
    GenericIf::Ptr const wrapper = wrapped(*entity, false);
    for (Assignment const& one : removals)
        if (one.key) wrapper->attributeOp(one.id, OpId::opDel, one.key);
    return ExitCode::success;
}

// Arguments as their types read them: of the agent's types, which are known once it is mounted.
ExitCode runCall(Context& context, Arguments const& arguments) {
    std::string const& path = arguments.operands[0];
    std::string const& name = arguments.operands[1];
    context.root();
    Qor::QorAttr const& operation = neededAttribute(*neededEntity(path)->fwkType(), name);
    if (!operation.introspection().isFunction())
        throw Failure(name + " is no operation: use get and set");
    Words const words = behind(arguments.operands, 2);
    needArguments(operation.arguments(), words, name);
    std::vector<std::string> texts;
    for (std::size_t n = 0; n < words.size(); ++n) {
        Qor::QorType& type = neededType(operation.arguments()[n].type.view());
        texts.push_back(
            type.isEntity()
                ? words[n]
                : std::string(valueFrom(type, words[n], operation.arguments()[n].name.view())
                                  ->strRep()
                                  .view()));
    }
    std::string const result = context.calling().call(path, name, texts, context.deadline());
    if (result.empty()) return ExitCode::success;
    bool const isJson = context.options().style.format == Format::json;
    context.out() << textOf(textValue(unquoted(result)), isJson ? TextForm::json : TextForm::bare)
                  << '\n';
    return ExitCode::success;
}

}  // namespace Vgwctl
