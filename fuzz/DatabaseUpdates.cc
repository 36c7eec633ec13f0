// Any JSON, taken for the updates of a monitor in both forms: it is refused by name and the store
// is as it was, or it is applied whole.
#include <fuzz/FuzzInput.h>
#include <ovsdb/rpc/ProtocolError.h>
#include <ovsdb/store/UpdateReader.h>
#include <tests/ovsdb/FullSchema.h>

namespace {

Ovsdb::MonitorPlan const& plan() {
    static Ovsdb::MonitorPlan const plan = [] {
        simdjson::dom::parser parser;
        return Ovsdb::MonitorPlan(Ovsdb::readSchema(parser.parse(Ovsdb::fullSchema().dump())));
    }();
    return plan;
}

void apply(Ovsdb::RowStore& store, simdjson::dom::element updates, Ovsdb::UpdateForm form) {
    std::size_t const before = store.size();
    try {
        Ovsdb::RowStore::Staging staging(store);
        Ovsdb::UpdateReader(plan(), staging).read(updates, form);
        static_cast<void>(staging.commit(false));
    } catch (Ovsdb::ProtocolError const&) {
        must(store.size() == before);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static simdjson::dom::parser parser;
    simdjson::padded_string const text(textOf(data, size));
    simdjson::dom::element updates;
    if (parser.parse(text).get(updates) != simdjson::SUCCESS) {
        return 0;
    }
    Ovsdb::RowStore store;
    apply(store, updates, Ovsdb::UpdateForm::differences);
    apply(store, updates, Ovsdb::UpdateForm::differences);
    apply(store, updates, Ovsdb::UpdateForm::whole);
    return 0;
}
