#include <modelc/emit/MemberEmitter.h>

#include <modelc/emit/ChildEmitter.h>
#include <modelc/emit/ChildMapEmitter.h>
#include <modelc/emit/ConstFieldEmitter.h>
#include <modelc/emit/DocText.h>
#include <modelc/emit/OperationEmitter.h>
#include <modelc/emit/RefMapEmitter.h>
#include <modelc/emit/ScalarEmitter.h>
#include <modelc/emit/ValueMapEmitter.h>

namespace Modelc {
namespace {

constexpr std::size_t memberIndentation = 4;

}  // namespace

MemberEmitter::MemberEmitter(Entity const& entity, std::string const& name, Doc const& doc)
    : entity_(entity), spelling_(name) {
    holes_ = {
        {"Class", entity.name},
        {"doc", docText(doc, memberIndentation)},
        {"name", spelling_.name()},
        {"field", spelling_.field()},
        {"setter", spelling_.setter()},
        {"builder", spelling_.builder()},
        {"remover", spelling_.remover()},
        {"allRemover", spelling_.allRemover()},
        {"notifier", spelling_.notifier()},
        {"count", spelling_.count()},
        {"memberReader", spelling_.memberReader()},
        {"iterator", spelling_.iterator()},
        {"iteratorConst", spelling_.iteratorConst()},
        {"memberIterator", spelling_.memberIterator()},
        {"handler", spelling_.handler()},
        {"immediateHandler", spelling_.immediateHandler()},
        {"Member", spelling_.memberClass()},
        {"Iterator", spelling_.iteratorClass()},
        {"IteratorConst", spelling_.iteratorConstClass()},
        {"MemberIterator", spelling_.memberIteratorClass()},
        {"Attr", spelling_.descriptor()},
        {"pending", spelling_.pendingField()},
        {"pendingReader", spelling_.pendingReader()},
    };
}

std::unique_ptr<MemberEmitter> makeMemberEmitter(Entity const& entity, Member const& member) {
    if (auto const* operation = std::get_if<Operation>(&member)) {
        return std::make_unique<OperationEmitter>(entity, *operation);
    }
    auto const& attribute = std::get<Attribute>(member);
    switch (attribute.kind) {
        case AttributeKind::scalar:
            return std::make_unique<ScalarEmitter>(entity, attribute);
        case AttributeKind::constructed:
            return std::make_unique<ConstFieldEmitter>(entity, attribute);
        case AttributeKind::set:
        case AttributeKind::map:
            return std::make_unique<ValueMapEmitter>(entity, attribute);
        case AttributeKind::reference:
            return std::make_unique<RefMapEmitter>(entity, attribute);
        case AttributeKind::owning:
            return std::make_unique<ChildMapEmitter>(entity, attribute);
        case AttributeKind::child:
            return std::make_unique<ChildEmitter>(entity, attribute);
    }
    return nullptr;
}

}  // namespace Modelc
