#include <tests/support/treeclient/Commands.h>

#include <kelp/EthAddr.h>
#include <qor/generic/GenericIf.h>
#include <vgw/Vgw.h>
#include <vgwd/show/Contents.h>
#include <vgwd/show/JsonText.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

namespace TreeClient {
namespace {

using Qor::GenericIf;
using Op = GenericIf::AttributeOp;
using Words = std::vector<std::string>;

Words wordsOf(std::string const& line) {
    std::istringstream in(line);
    Words words;
    for (std::string word; in >> word;) words.push_back(word);
    words.resize(std::max<std::size_t>(words.size(), 6));
    return words;
}

GenericIf::Ptr wrapperAt(Connection& connection, std::string const& path) {
    auto const entity = connection.at(path);
    if (!entity) throw std::runtime_error(path + " is not there");
    return entity->fwkType()->genericIf_(entity.ptr(), false);
}

GenericIf::Ptr valueOf(Qor::QorType* type, std::string const& text) {
    return type->genericIfFromStrep(text.c_str(), false);
}

std::string textOf(GenericIf::Ptr const& value) {
    return "value " + (value ? std::string(value->strRep().view()) : "nothing");
}

struct Attribute {
    Attribute(Connection& connection, Words const& words)
        : wrapper(wrapperAt(connection, words[1])),
          record(wrapper->fwkType()->attr(wrapper->attributeId(words[2].c_str()))) {}
    GenericIf::Ptr key(std::string const& text) const {
        return text.empty() ? nullptr : valueOf(record->keyType(), text);
    }
    GenericIf::Ptr wrapper;
    Qor::QorAttr::Ptr record;
};

std::string get(Connection& connection, Words const& words) {
    Attribute const attribute(connection, words);
    return textOf(
        attribute.wrapper->attributeOp(attribute.record->id(), Op::opGet, attribute.key(words[3])));
}

std::string set(Connection& connection, Words const& words) {
    Attribute const attribute(connection, words);
    bool const isKeyed = !words[4].empty();
    attribute.wrapper->attributeOp(attribute.record->id(), Op::opSet,
                                   isKeyed ? attribute.key(words[3]) : nullptr,
                                   valueOf(attribute.record->valueType(), words[isKeyed ? 4 : 3]));
    return "ok";
}

std::string del(Connection& connection, Words const& words) {
    Attribute const attribute(connection, words);
    attribute.wrapper->attributeOp(attribute.record->id(), Op::opDel, attribute.key(words[3]));
    return "ok";
}

std::string list(Connection& connection, Words const& words) {
    Attribute const attribute(connection, words);
    std::string keys = "value";
    for (auto at = attribute.wrapper->attributeIteratorConst(attribute.record->id()); at; ++at)
        keys += " " + std::string(at.key()->strRep().view());
    return keys;
}

Qor::Ptr<Qor::Dir> directoryAt(Connection& connection, std::string const& path) {
    auto const directory = Qor::dynamicCast<Qor::Dir>(connection.at(path));
    if (!directory) throw std::runtime_error(path + " is no directory here");
    return directory;
}

std::string newMac(Connection& connection, Words const& words) {
    auto const directory = directoryAt(connection, "/vgw/" + words[1]);
    Kelp::EthAddr const mac{std::string_view(words[3])};
    Qor::Ptr<Qor::Entity> row;
    std::string const& table = words[4].empty() ? words[1] : words[4];
    if (table == "ucastMacsLocal")
        row = Qor::make<Vgw::UcastMacsLocal>(mac);
    else
        row = Qor::make<Vgw::McastMacsLocal>(mac);
    directory->entryIs(Qor::Name(std::string_view(words[2])), row);
    return "ok";
}

std::string dump(Connection& connection, Words const& words) {
    auto const database = Qor::dynamicCast<Vgw::HwVtepOvsdb>(connection.at("/vgw/status/ovsdb"));
    if (!database) throw std::runtime_error("/vgw/status/ovsdb is not there");
    Ovsdb::MacDirectories const macs{directoryAt(connection, "/vgw/ucastMacsLocal"),
                                     directoryAt(connection, "/vgw/mcastMacsLocal"),
                                     directoryAt(connection, "/vgw/ucastMacsRemote"),
                                     directoryAt(connection, "/vgw/mcastMacsRemote")};
    Vgwd::JsonText json;
    Vgwd::tellMirror(*database, macs, {}, json);
    std::ofstream out(words[1], std::ios::binary);
    out << json.take();
    return "ok";
}

std::string counters(Connection& connection, Words const&) {
    auto const counted = connection.counters();
    return "value " + std::to_string(counted.bytesIn) + " " + std::to_string(counted.bytesOut) +
           " " + std::to_string(counted.framesIn) + " " + std::to_string(counted.framesOut);
}

std::string mount(Connection& connection, Words const& words) {
    connection.add(words[1], words[0] == "mountw");
    return "ok";
}

std::string unmount(Connection& connection, Words const& words) {
    return connection.remove(words[1]) ? "ok" : "failed: it is not mounted";
}

std::string ping(Connection& connection, Words const&) {
    connection.ping();
    return "ok";
}

std::map<std::string, std::string (*)(Connection&, Words const&)> const commands = {
    {"get", get},       {"set", set},         {"del", del},           {"list", list},
    {"newmac", newMac}, {"dump", dump},       {"counters", counters}, {"mount", mount},
    {"mountw", mount},  {"unmount", unmount}, {"ping", ping},
};

}  // namespace

std::string answer(Connections& connections, std::string const& line) {
    Words const words = wordsOf(line);
    if (words[0] == "synced") {
        auto const count = std::count_if(connections.begin(), connections.end(),
                                         [](auto const& one) { return one->isSynced(); });
        return "value " + std::to_string(count);
    }
    auto const found = commands.find(words[0]);
    if (found == commands.end()) return "failed: no command " + words[0];
    try {
        return found->second(*connections.front(), words);
    } catch (std::exception const& e) {
        return std::string("failed: ") + e.what();
    }
}

}  // namespace TreeClient
