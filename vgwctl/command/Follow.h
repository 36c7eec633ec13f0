#ifndef VGWCTL_COMMAND_FOLLOW_H
#define VGWCTL_COMMAND_FOLLOW_H

// Follows entities and what comes and goes below them.
//
// What is heard is gathered, and told at flush(): each attribute or key once, with its last value,
// whatever its number of changes. So nothing is printed inside of a setter, and a burst costs no
// more than what it has changed.

#include <vgwctl/state/Value.h>

#include <qor/generic/GenericIf.h>

#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace Vgwctl {

/// The name under which it is told how far an entry of a directory can be relied on.
inline constexpr std::string_view entryStateAttribute = "_state";

struct Change {
    enum class Kind { initial, inserted, modified, deleted };

    Kind kind = Kind::modified;
    std::string path;
    Qor::QorType const* type = nullptr;
    std::string attribute;  // empty: the entity itself
    Value key;              // none: a single value, or a collection as a whole
    Value value;            // none of a member that has gone
};

class Follower : private Qor::GenericIf::Watcher {
  public:
    using Sink = std::function<void(Change const&)>;
    /// Whether an entity at that path is followed, and what stands below it looked at.
    using Wanted = std::function<bool(std::string const& path)>;

    Follower(Sink sink, Wanted wanted) : sink_(std::move(sink)), wanted_(std::move(wanted)) {}
    ~Follower() override;
    Follower(Follower const&) = delete;
    Follower& operator=(Follower const&) = delete;

    /// Follows an entity and all below it, and tells all that it holds as `initial`.
    void follow(Qor::Entity& entity);
    /// Tells what has happened since.
    void flush();

  private:
    // The attribute that holds a child, and the text of its key, empty for an only one.
    using Slot = std::pair<Qor::AttributeId, std::string>;
    struct Followed {
        Qor::GenericIf::Ptr wrapper;  // holds the entity
        std::string path;
        std::string state;  // as an entry of a directory
        std::map<Slot, Qor::Entity const*> children;
    };
    using Heard = std::tuple<Qor::Entity const*, Qor::AttributeId, std::string>;

    void onAttribute(Qor::GenericIf& wrapper, Qor::AttributeId id,
                     Qor::GenericIf::PtrConst& key) override;

    void add(Qor::Entity& entity, Change::Kind kind);
    void drop(Qor::Entity const& entity);
    void tell(Heard const& heard);
    void tellState(Followed const& followed, Change::Kind kind);
    // Of an entry of a directory, whether it can be relied on, if that has changed.
    void tellEntryState(Followed& followed, Change::Kind kind);
    void tellValue(Followed const& followed, Qor::QorAttr const& attribute, std::string const& key);
    static Qor::GenericIf::Ptr memberOf(Followed const& followed, Qor::QorAttr const& attribute,
                                        std::string const& key);
    // What stands in a slot has perhaps come or gone; of all slots of an attribute.
    void reconcile(Followed& followed, Slot const& slot, Qor::Entity::Ptr const& child,
                   Change::Kind kind);
    void reconcileAll(Followed& followed, Qor::QorAttr const& attribute, Change::Kind kind);

    Sink sink_;
    Wanted wanted_;
    std::map<Qor::Entity const*, Followed> followed_;
    std::vector<Heard> heard_;
    std::set<Heard> known_;               // what stands in heard_
    std::set<Qor::Entity const*> added_;  // since the last flush
};

}  // namespace Vgwctl

#endif
