// Operations of the peer's entities, called by their names. Who may write may call what the owner
// of the tree lets be called.
#include <qor/attrlog/session/Session.h>

#include <qor/generic/GenericList.h>
#include <qor/registry/QorType.h>

namespace Qor {

namespace NboAttrLog {

namespace {

constexpr U32 mostArguments = 64;

QorAttr const& operationOf(Entity const& entity, String8 const& name) {
    QorType const& type = *entity.fwkType();
    for (auto const& attribute : type.attributes()) {
        bool const isMeant = attribute->name().view() == name.view();
        if (isMeant && attribute->introspection().isFunction()) return *attribute;
    }
    throwRangeException(type.fullName() + " has no operation " + name);
}

}  // namespace

CallId Session::call(String8 const& path, String8 const& operation,
                     std::vector<String8> const& arguments) {
    CallId const call = ++lastCall_;
    auto const& out = demuxer_->out();
    out->beginFrame(FrameKind::link, {});
    out << Out::TransactToken::begin << static_cast<U8>(Op::call) << call << path << operation
        << static_cast<U32>(arguments.size());
    for (String8 const& argument : arguments) out << argument;
    out << Out::TransactToken::end;
    return call;
}

void Session::handleCall(In& in) {
    CallId const call = in.nextU32();
    String8 const path = in.nextString();
    String8 const operation = in.nextString();
    U32 const count = in.nextU32();
    if (count > mostArguments) throw AttrLogRecordException("a call with too many arguments");
    std::vector<String8> arguments;
    for (U32 n = 0; n < count; ++n) arguments.push_back(in.nextString());
    Alive const alive(*this);
    try {
        String8 const result = called(path, operation, arguments);
        if (alive) send(Op::returned, call, true, result);
    } catch (Exception const& failure) {
        if (alive) send(Op::returned, call, false, toldText(failure.message()));
    }
}

// The text of the result. Raises an exception that tells why there is none.
String8 Session::called(String8 const& path, String8 const& operation,
                        std::vector<String8> const& arguments) {
    if (!config_.peerMayWrite) throwRangeException(path + " may only be read");
    Ptr<Entity> const entity = entityAt(path);
    if (!entity) throwRangeException(path + " does not exist");
    QorAttr const& attribute = operationOf(*entity, operation);
    if (arguments.size() != attribute.arguments().size()) {
        throwRangeException(operation + " takes another number of arguments");
    }
    SessionListener nobody;
    SessionListener& door = listener_ != nullptr ? *listener_ : nobody;
    Alive const alive(*this);
    String8 const why = door.onAskedToCall(path, operation, *entity);
    if (!alive) throwRangeException("the session has ended");
    if (why.length() != 0) throwRangeException(why);
    auto const list = make<GenericIf::List_>();
    for (std::size_t n = 0; n < arguments.size(); ++n) {
        QorType* const type = QorType::type(attribute.arguments()[n].type);
        if (type == nullptr) throwRangeException("the type of an argument is not known here");
        if (!type->isEntity()) {
            list->enq(type->genericIfFromStrep(arguments[n], false));
            continue;
        }
        Ptr<Entity> const argument = entityAt(arguments[n]);
        if (!argument) throwRangeException(arguments[n] + " does not exist");
        list->enq(argument->fwkType()->genericIf_(argument.ptr(), false));
    }
    GenericIf::Ptr const wrapper = entity->fwkType()->genericIf_(entity.ptr(), false);
    GenericIf::Ptr const result =
        wrapper->attributeOp(attribute.id(), GenericIf::AttributeOp::opGet, list);
    return result ? result->strRep() : String8();
}

void Session::handleReturned(In& in) {
    CallId const call = in.nextU32();
    bool const isDone = in.nextbool();
    String8 const text = in.nextString();
    if (listener_ != nullptr) listener_->onReturned(call, isDone, text);
}

}  // namespace NboAttrLog

}  // namespace Qor
