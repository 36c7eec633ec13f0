// A tool that knows no class. It loads a library of entities by its file's name; from then on it
// makes, describes, reads, writes, lists, calls and watches by names and texts alone. The names
// below could as well have come from a command line.

#include <dlfcn.h>

#include <iostream>

#include <qor/generic/GenericException.h>
#include <qor/generic/GenericList.h>

namespace {

using Qor::GenericIf;
using Qor::QorType;
using Wrapper = GenericIf::Ptr;
using OpId = GenericIf::AttributeOp::OpId;

/// The value of that type that a text stands for.
Wrapper value(QorType* type, char const* text) { return type->genericIfFromStrep(text, false); }

Wrapper list(std::initializer_list<Wrapper> arguments) {
    return Qor::make<GenericIf::List_>(GenericIf::List::Queue(arguments));
}

/// The record of an attribute; the wrapper knows its class, so a name is enough.
Qor::QorAttr::Ptr record(Wrapper const& wrapper, char const* name) {
    return wrapper->fwkType()->attr(wrapper->attributeId(name));
}

void set(Wrapper const& wrapper, char const* name, char const* text) {
    auto const attribute = record(wrapper, name);
    wrapper->attributeOp(attribute->id(), OpId::opSet, nullptr,
                         value(attribute->valueType(), text));
}

void set(Wrapper const& wrapper, char const* name, char const* key, char const* text) {
    auto const attribute = record(wrapper, name);
    wrapper->attributeOp(attribute->id(), OpId::opSet, value(attribute->keyType(), key),
                         value(attribute->valueType(), text));
}

/// A child, made in its owner's attribute.
Wrapper child(Wrapper const& owner, char const* attribute, char const* name) {
    return owner->attributeOp(owner->attributeId(attribute), OpId::opSet, nullptr,
                              list({value(QorType::type("Qor::Name"), name)}));
}

Wrapper call(Wrapper const& wrapper, char const* operation, Wrapper const& arguments) {
    return wrapper->attributeOp(wrapper->attributeId(operation), OpId::opGet, arguments);
}

/// What is known of a type.
void describe(QorType const& type) {
    std::cout << type.fullName() << " : " << type.base()->fullName() << '\n';
    for (auto const& attribute : type.attributes()) {
        if (attribute->definedBy() != &type) {
            continue;  // its base tells the same
        }
        std::cout << "  " << attribute->id() << ' ' << attribute->name();
        if (attribute->introspection().isFunction()) {
            std::cout << '(';
            for (auto const& argument : attribute->arguments()) {
                std::cout << argument.name << " : " << argument.type;
            }
            std::cout << ')';
        }
        std::cout << " : " << attribute->valueType()->fullName();
        if (attribute->keyType()) {
            std::cout << '[' << attribute->keyType()->fullName() << ']';
        }
        std::cout << (attribute->flags().isWritable() ? "" : ", read only") << '\n';
    }
}

void show(Wrapper const& wrapper, std::string const& indent);

void showValue(std::string const& what, Wrapper const& held, bool isOwned,
               std::string const& indent) {
    if (!isOwned || !held->entity()) {
        std::cout << indent << what << " = " << held->strRep() << '\n';
        return;
    }
    std::cout << indent << what << ":\n";
    show(held, indent + "  ");
}

/// All that an entity holds, its children with it.
void show(Wrapper const& wrapper, std::string const& indent) {
    for (auto const& attribute : wrapper->fwkType()->attributes()) {
        std::string const name(attribute->name().view());
        bool const isOwned = attribute->flags().isInstantiating();
        if (attribute->flags().isCollection()) {
            for (auto at = wrapper->attributeIteratorConst(attribute->id()); at; ++at) {
                std::string const key(at.key()->strRep().view());
                showValue(name + "[" + key + "]", at.value(), isOwned, indent);
            }
        } else if (attribute->flags().isStored()) {
            showValue(name, wrapper->attributeOp(attribute->id()), isOwned, indent);
        }
    }
}

/// Tells what changes in whatever entity it is given to.
class Teller : public GenericIf::Watcher {
  public:
    void onAttribute(GenericIf& wrapper, Qor::AttributeId id, GenericIf::PtrConst& key) override {
        std::cout << "changed: " << wrapper.entityConst()->uriPath() << ' '
                  << wrapper.attributeString(id);
        if (key) {
            std::cout << '[' << key->strRep() << ']';
        }
        std::cout << '\n';
    }
};

template <class Attempt>
void refused(Attempt&& attempt) {
    try {
        attempt();
    } catch (Qor::Exception const& e) {
        std::cout << "refused: " << e.what() << '\n';
    }
}

void work() {
    describe(*QorType::type("Vgw::LogicalSwitch"));

    Wrapper const name = value(QorType::type("Qor::Name"), "'ovsdb'");
    Wrapper const database =
        QorType::type("Vgw::HwVtepOvsdb")->genericIf(list({name}).ptr(), false);
    Teller teller;
    database->watcherIs(&teller);

    Wrapper const red = child(database, "logicalSwitch", "'red'");
    red->watcherIs(&teller);
    set(red, "tunnelKey", "5001");
    set(red, "tunnelKey", "5001");  // the same value: nobody is told
    set(red, "invalidAttrib", "'desc'", "true");

    Wrapper const port = child(database, "physicalPort", "'ethernet1'");
    set(port, "vlanBinding", "7", "'red'");
    Wrapper const same = call(port, "isEqualTo", list({port}));
    std::cout << "isEqualTo: " << same->strRep() << '\n';

    refused([&] { set(red, "tunnelKey", "many"); });
    refused([&] { set(red, "color", "'red'"); });
    refused([&] { call(port, "isEqualTo", list({red})); });
    refused([&] { call(database, "clear", list({name})); });

    show(database, "");
    call(database, "clear", list({}));
    show(database, "");
    red->watcherIs(nullptr);
    database->watcherIs(nullptr);
}

}  // namespace

int main(int argc, char** argv) {
    char const* const library = argc > 1 ? argv[1] : "libVgwStatemart.so.0";
    if (!dlopen(library, RTLD_NOW)) {
        std::cerr << dlerror() << '\n';
        return 1;
    }
    work();
    return 0;
}
