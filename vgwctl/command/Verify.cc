#include <vgwctl/command/Verify.h>

#include <vgwctl/state/Place.h>

#include <ostream>

namespace Vgwctl {
namespace {

using Qor::NboAttrLog::DigestPage;

constexpr Qor::U32 pageRows = 1000;

// An entity to be looked at, by its path: it may go meanwhile.
using Paths = std::vector<std::string>;

class Verifier {
  public:
    explicit Verifier(Context& context)
        : context_(context), table_({"path", "collection", "rows", "digest", "same"}) {}

    void verify(std::string const& path) {
        compare({Qor::String8(std::string_view(path)), 0, {}, 1}, path, "");
        Qor::Entity::Ptr const entity = entityAt(path);
        if (!entity) return;
        for (Qor::QorAttr const* const attribute : heldAttributes(*entity->fwkType())) {
            if (!holdsChildren(*entity, *attribute)) continue;
            if (attribute->flags().isCollection()) verifyCollection(path, *attribute);
        }
        for (std::string const& child : ownersBelow(*entity)) verify(child);
    }

    Table const& table() const { return table_; }
    bool isSame() const { return isSame_; }

  private:
    // Those that own more than their values; the values of all members are in their collection.
    static Paths ownersBelow(Qor::Entity& entity) {
        Paths paths;
        forEachChild(entity, [&](Qor::QorAttr const& attribute, Qor::Entity& child) {
            bool const isOnly = !attribute.flags().isCollection();
            if (isOnly || mayOwn(child)) paths.emplace_back(child.uriPath().view());
        });
        return paths;
    }
    static bool mayOwn(Qor::Entity& entity) {
        if (dynamic_cast<Qor::Dir*>(&entity) != nullptr) return true;
        for (Qor::QorAttr const* const attribute : heldAttributes(*entity.fwkType()))
            if (attribute->flags().isInstantiating()) return true;
        return false;
    }

    void verifyCollection(std::string const& path, Qor::QorAttr const& attribute) {
        std::string const name(attribute.name().view());
        DigestPage page{Qor::String8(std::string_view(path)), attribute.id(), {}, pageRows};
        do {
            page.from = compare(page, path, name);
        } while (!page.from.empty());
    }

    // The text of the key behind the page.
    Qor::String8 compare(DigestPage const& page, std::string const& path, std::string const& name) {
        auto const digests = context_.reading().digest(page, context_.deadline());
        if (!digests) return {};
        auto const& [agents, own] = *digests;
        bool const isSame =
            agents.value == own.value && agents.rows == own.rows && agents.next == own.next;
        if (!isSame && page.most > 1) return narrow(page, path, name);
        if (agents.rows > 0 || !isSame) add(page, path, name, agents, isSame);
        return page.most == 1 && page.attribute != 0 ? Qor::String8() : agents.next;
    }

    // The first rows of the page that differ, each by itself.
    Qor::String8 narrow(DigestPage page, std::string const& path, std::string const& name) {
        constexpr int mostShown = 10;
        Qor::U32 const rows = page.most;
        page.most = 1;
        int shown = 0;
        for (Qor::U32 row = 0; row < rows && shown < mostShown; ++row) {
            auto const digests = context_.reading().digest(page, context_.deadline());
            if (!digests) return {};
            bool const isSame = digests->agents.value == digests->own.value;
            if (!isSame) add(page, path, name, digests->agents, false);
            if (!isSame) ++shown;
            page.from = digests->agents.next;
            if (page.from.empty()) break;
        }
        return page.from;
    }

    void add(DigestPage const& page, std::string const& path, std::string const& name,
             Qor::NboAttrLog::StateDigest const& digest, bool isSame) {
        isSame_ = isSame_ && isSame;
        char hash[17];
        std::snprintf(hash, sizeof hash, "%016llx", static_cast<unsigned long long>(digest.value));
        bool const isRow = !isSame && page.most == 1 && page.attribute != 0;
        std::string const row = isRow ? "[" + unquoted(page.from.view()) + "]" : "";
        table_.rowInc({textValue(path),
                       textValue(name + row),
                       {Value::Kind::number, std::to_string(digest.rows), {}},
                       textValue(hash),
                       {Value::Kind::boolean, isSame ? "true" : "false", {}}});
    }

    Context& context_;
    Table table_;
    bool isSame_ = true;
};

}  // namespace

ExitCode runVerify(Context& context, Arguments const& arguments) {
    Qor::Entity& root = context.root();
    std::string const path =
        arguments.operands.empty() ? std::string(root.uriPath().view()) : arguments.operands[0];
    neededEntity(path);
    Verifier verifier(context);
    verifier.verify(path);
    TableStyle style = context.options().style;
    if (style.data == TextForm::string) style.data = TextForm::bare;
    verifier.table().print(context.out(), style);
    return verifier.isSame() ? ExitCode::success : ExitCode::differs;
}

}  // namespace Vgwctl
