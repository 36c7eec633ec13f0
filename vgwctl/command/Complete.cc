#include <vgwctl/command/Complete.h>

#include <vgwctl/output/ValueText.h>
#include <vgwctl/state/Place.h>

#include <ostream>

namespace Vgwctl {
namespace {

class Offer {
  public:
    Offer(std::ostream& out, std::string word) : out_(out), word_(std::move(word)) {}

    void add(std::string const& text) {
        if (text.starts_with(word_)) out_ << printable(text) << '\n';
    }

  private:
    std::ostream& out_;
    std::string const word_;
};

// One step further down: the children of what the word names, and the collections on the way.
void offerPaths(Offer& offer, std::string const& word, Qor::Entity& root) {
    std::size_t const slash = word.rfind('/');
    if (slash == std::string::npos || slash == 0) {
        offer.add(std::string(root.uriPath().view()));
        return;
    }
    std::string base = word.substr(0, slash);
    Qor::Entity::Ptr entity = entityAt(base);
    // Behind a collection's name the entity is one step up.
    if (!entity && base.rfind('/') > 0) entity = entityAt(base.substr(0, base.rfind('/')));
    if (!entity) return;
    std::set<std::string> steps;
    forEachChild(*entity, [&](Qor::QorAttr const&, Qor::Entity& child) {
        std::string const path(child.uriPath().view());
        if (!path.starts_with(base + "/")) return;
        std::size_t const end = path.find('/', base.size() + 1);
        steps.insert(path.substr(0, end));
    });
    for (std::string const& step : steps) offer.add(step);
}

void offerTypes(Offer& offer, bool isFull) {
    for (Qor::QorType* const type : Qor::QorType::types()) {
        if (isFull) {
            offer.add(std::string(type->fullName().view()));
        } else if (type->isEntity()) {
            offer.add(std::string(type->name().view()));
        }
    }
}

void offerAttributes(Offer& offer, Qor::Entity& entity, bool isCall) {
    for (auto const& attribute : entity.fwkType()->attributes())
        if (attribute->introspection().isFunction() == isCall)
            offer.add(std::string(attribute->name().view()));
}

}  // namespace

ExitCode runComplete(Context& context, Arguments const& arguments) {
    Qor::Entity& root = context.root();
    char const kind = arguments.operands[0].empty() ? ' ' : arguments.operands[0][0];
    std::string const word = arguments.operands.size() > 1 ? arguments.operands[1] : "";
    Offer offer(context.out(), word);
    if (kind == 'P' || kind == 'C') offerPaths(offer, word, root);
    if (kind == 'C' || kind == 'T') offerTypes(offer, kind == 'T');
    if ((kind == 'A' || kind == 'O') && arguments.operands.size() > 2)
        if (Qor::Entity::Ptr const entity = entityAt(arguments.operands[2]))
            offerAttributes(offer, *entity, kind == 'O');
    return ExitCode::success;
}

}  // namespace Vgwctl
