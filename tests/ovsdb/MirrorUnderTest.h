#ifndef TESTS_OVSDB_MIRROR_UNDER_TEST_H
#define TESTS_OVSDB_MIRROR_UNDER_TEST_H

// A store and a mirror of its own, fed with the tables of updates as JSON.

#include "FullSchema.h"
#include "JsonText.h"

#include <ovsdb/mirror/Mirror.h>
#include <ovsdb/store/UpdateReader.h>
#include <vgwd/show/Contents.h>
#include <vgwd/show/JsonText.h>

#include <nlohmann/json.hpp>

#include <cstdio>
#include <string>

namespace Ovsdb {

/// A uuid whose last digits are the number.
inline std::string uuidText(unsigned number) {
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "00000000-0000-4000-8000-%012u", number);
    return text.data();
}

inline nlohmann::json ref(unsigned number) { return {"uuid", uuidText(number)}; }

class MirrorUnderTest {
  public:
    using Json = nlohmann::json;

    explicit MirrorUnderTest(Json const& schema = fullSchema()) { planIs(schema); }

    void planIs(Json const& schema) {
        JsonText const text(schema.dump());
        plan_ = MonitorPlan(readSchema(text.root()));
        mirror_.planIs(plan_);
    }

    void update(Json const& tables, bool whole = false, UpdateForm form = UpdateForm::differences) {
        JsonText const text(tables.dump());
        apply(text.root(), whole, form);
    }

    void apply(simdjson::dom::element tables, bool whole = false,
               UpdateForm form = UpdateForm::differences) {
        RowStore::Staging staging(store_);
        UpdateReader(plan_, staging).read(tables, form);
        changes_ = staging.commit(whole, plan_.gapTables());
        mirror_.apply(changes_);
    }

    /// The canonical dump.
    std::string text() const {
        Vgwd::JsonText json;
        Vgwd::tellMirror(mirror_, json);
        return json.take();
    }
    Json dump() const { return Json::parse(text()); }

    Vgw::HwVtepOvsdb::Ptr const& database() const { return database_; }
    MacDirectories const& directories() const { return directories_; }
    RowStore const& store() const { return store_; }
    Mirror const& mirror() const { return mirror_; }
    /// Of the last update.
    std::vector<RowChange> const& changes() const { return changes_; }

  private:
    static Qor::Dir::Ptr directory(char const* name) { return Qor::make<Qor::Dir>(name); }

    RowStore store_;
    std::vector<RowChange> changes_;
    MonitorPlan plan_;
    Vgw::HwVtepOvsdb::Ptr database_ = Vgw::hwVtepOvsdbFactory("ovsdb");
    MacDirectories directories_{directory("ucastMacsLocal"), directory("mcastMacsLocal"),
                                directory("ucastMacsRemote"), directory("mcastMacsRemote")};
    Mirror mirror_{store_, database_, directories_};
};

}  // namespace Ovsdb

#endif
