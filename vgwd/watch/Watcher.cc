#include <vgwd/watch/Watcher.h>

#include <vgw/OvsdbDataTypes.h>
#include <vgwd/watch/RowWatch.h>
#include <vgwd/watch/StatusWatch.h>

#include <map>

namespace Vgwd {
namespace {

using Watches = std::map<Qor::Name, Qor::Entity::NotifieeConst::Ptr>;

std::string pathOf(Qor::Entity const& entity) { return std::string(entity.uriPath().view()); }

std::string elementOf(Qor::String8 const& key) { return std::string(key.view()); }

// Tells that a key has an entity or has none, and watches the entity while it is there.
void follow(Watches& watches, Qor::Name const& key, Qor::Ptr<Qor::Entity const> const& row,
            std::string const& owner, char const* attribute, ChangePrinter& printer) {
    watches.erase(key);
    printer.tellKey(owner, attribute, elementOf(key), row ? "added" : ChangePrinter::removed);
    if (row) watches.emplace(key, watchRow(row, pathOf(*row), printer));
}

class DatabaseWatch final : public Vgw::HwVtepOvsdb::NotifieeConst {
  public:
    explicit DatabaseWatch(ChangePrinter& printer) : printer_(printer) {}

    void onRoot(Qor::Name key) override { owned(root_, key, db().root(key), "root"); }
    void onManager(Qor::Name key) override { owned(manager_, key, db().manager(key), "manager"); }
    void onPhysicalPort(Qor::Name key) override {
        owned(physicalPort_, key, db().physicalPort(key), "physicalPort");
    }
    void onLogicalBindingStats(Qor::Name key) override {
        owned(logicalBindingStats_, key, db().logicalBindingStats(key), "logicalBindingStats");
    }
    void onLogicalSwitch(Qor::Name key) override {
        owned(logicalSwitch_, key, db().logicalSwitch(key), "logicalSwitch");
    }
    void onPhysicalLocatorSet(Qor::Name key) override {
        owned(physicalLocatorSet_, key, db().physicalLocatorSet(key), "physicalLocatorSet");
    }
    void onPhysicalSwitchRaw(Qor::Name key) override {
        owned(physicalSwitchRaw_, key, db().physicalSwitchRaw(key), "physicalSwitchRaw");
    }
    void onPhysicalLocatorRaw(Qor::Name key) override {
        owned(physicalLocatorRaw_, key, db().physicalLocatorRaw(key), "physicalLocatorRaw");
    }
    void onPhysicalSwitch(Qor::String8 key) override {
        reference("physicalSwitch", elementOf(key), db().physicalSwitch(key));
    }
    void onPhysicalLocator(Kelp::IpAddr key) override {
        reference("physicalLocator", elementOf(key.stringValue()), db().physicalLocator(key));
    }
    void onRemoteLocator(Vgw::PhysicalLocatorKey const& key) override {
        reference("remoteLocator",
                  elementOf(Vgw::stringValue(key.encapType())) + " " +
                      elementOf(key.dstIp().stringValue()),
                  db().remoteLocator(key));
    }

  private:
    Vgw::HwVtepOvsdb const& db() const {
        return static_cast<Vgw::HwVtepOvsdb const&>(*qorNotifier());
    }

    void owned(Watches& watches, Qor::Name const& key, Qor::Ptr<Qor::Entity const> const& row,
               char const* attribute) {
        follow(watches, key, row, pathOf(db()), attribute, printer_);
    }
    template <class X>
    void reference(char const* attribute, std::string const& key, Qor::Ptr<X> const& row) {
        printer_.tellKey(pathOf(db()), attribute, key,
                         row ? elementOf(row->name()) : ChangePrinter::removed);
    }

    ChangePrinter& printer_;
    Watches root_;
    Watches manager_;
    Watches physicalPort_;
    Watches logicalBindingStats_;
    Watches logicalSwitch_;
    Watches physicalLocatorSet_;
    Watches physicalSwitchRaw_;
    Watches physicalLocatorRaw_;
};

class DirectoryWatch final : public Qor::Dir::NotifieeConst {
  public:
    explicit DirectoryWatch(ChangePrinter& printer) : printer_(printer) {}

    void onEntry(Qor::Name key) override {
        auto const& directory = static_cast<Qor::Dir const&>(*qorNotifier());
        follow(rows_, key, directory.entry(key), pathOf(directory), "entry", printer_);
    }

  private:
    ChangePrinter& printer_;
    Watches rows_;
};

}  // namespace

Watcher::Watcher(Vgw::HwVtepOvsdb::Ptr const& database,
                 std::vector<Qor::Dir::Ptr> const& directories, std::FILE* out)
    : printer_(out) {
    watches_.push_back(Qor::make<DatabaseWatch>(printer_));
    watches_.back()->notifierIs(database);
    for (Qor::Dir::Ptr const& directory : directories) {
        watches_.push_back(Qor::make<DirectoryWatch>(printer_));
        watches_.back()->notifierIs(directory);
    }
}

void Watcher::watch(Vgw::Status::Ptr const& status) {
    for (auto const& watch : watchStatus(status, printer_)) watches_.push_back(watch);
}

Watcher::~Watcher() = default;

}  // namespace Vgwd
