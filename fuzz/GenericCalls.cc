// Random operations on random attributes with random arguments, through the generic interface, over
// every class that is registered: each is carried out, or refused by name.
#include <fuzz/FuzzInput.h>
#include <fuzz/HostilePeer.h>
#include <qor/generic/GenericException.h>
#include <qor/generic/GenericList.h>
#include <vgw/agent/Status.h>
#include <vgw/registry/HwVtepOvsdb.h>
#include <vgw/registry/Status.h>

#include <array>
#include <vector>

namespace {

using Qor::GenericIf;
using Qor::Name;
using Qor::QorType;
using OpId = GenericIf::AttributeOp::OpId;
using Wrapper = GenericIf::Ptr;

constexpr std::array<char const*, 20> entityTypes{"Vgw::Status",
                                                  "Vgw::HwVtepOvsdb",
                                                  "Vgw::Global",
                                                  "Vgw::Manager",
                                                  "Vgw::BackupManager",
                                                  "Vgw::PhysicalSwitch",
                                                  "Vgw::PhysicalPort",
                                                  "Vgw::LogicalBindingStats",
                                                  "Vgw::LogicalSwitch",
                                                  "Vgw::UcastMacsLocal",
                                                  "Vgw::McastMacsLocal",
                                                  "Vgw::UcastMacsRemote",
                                                  "Vgw::McastMacsRemote",
                                                  "Vgw::PhysicalLocator",
                                                  "Vgw::PhysicalLocatorSet",
                                                  "Vgw::Config",
                                                  "Vgw::CliConfig",
                                                  "Vgw::OvsdbSessionStatus",
                                                  "Qor::Dir",
                                                  "Vgw::OvsdbDataModel"};
constexpr std::array<OpId, 13> operations{
    OpId::opGet, OpId::opCount, OpId::opVersion, OpId::opExists, OpId::opSet,
    OpId::opDel, OpId::opEq,    OpId::opNe,      OpId::opGt,     OpId::opLt,
    OpId::opGe,  OpId::opLe,    OpId::opNot};

class Calls {
  public:
    explicit Calls(std::string_view input) : input_(input) {}

    void run() {
        while (!input_.isOver() && held_.size() < 64) {
            try {
                one();
            } catch (Qor::Exception const&) {
            }
        }
    }

  private:
    void one() {
        std::uint8_t const word = input_.byte();
        if (held_.empty() || word % 8 == 0) return keep(entity());
        if (word % 8 == 1) return keep(argument());
        Wrapper const target = chosen();
        if (!target) return;
        if (word % 8 == 2) return walk(*target);
        auto const id = attributeOf(*target);
        auto const op = operations[input_.byte() % operations.size()];
        // Switches the counting of references off, by contract: an entity need not end then.
        if (id == Qor::isNondestructingId && op == OpId::opSet) return;
        keep(target->attributeOp(id, op, word & 0x40 ? argument() : nullptr,
                                 word & 0x80 ? argument() : nullptr));
    }
    void keep(Wrapper wrapper) {
        if (wrapper) held_.push_back(std::move(wrapper));
    }
    Wrapper chosen() { return held_.empty() ? nullptr : held_[input_.byte() % held_.size()]; }

    Wrapper entity() {
        auto* const type = QorType::type(Name(entityTypes[input_.byte() % entityTypes.size()]));
        must(type != nullptr);
        auto const fresh = type->newEntity(Name("e"), nullptr);
        return fresh ? type->genericIf_(fresh.ptr(), false) : nullptr;
    }
    // Mostly an attribute that the class has.
    Qor::AttributeId attributeOf(GenericIf const& wrapper) {
        auto const known = wrapper.fwkType()->attributes();
        std::uint8_t const choice = input_.byte();
        if (known.empty() || choice > 0xF0) return static_cast<Qor::AttributeId>(input_.number(4));
        return known[choice % known.size()]->id();
    }
    // A text, a number, a list of those, or something that was made before.
    Wrapper argument() {
        std::uint8_t const word = input_.byte();
        switch (word % 6) {
            case 0:
                return text("Qor::String8");
            case 1:
                return text("Qor::Name");
            case 2:
                return parsed();
            case 3:
                return chosen();
            case 4:
                return Qor::make<GenericIf::List_>(GenericIf::List::Queue{text("Qor::Name")});
            default:
                return Qor::make<GenericIf::List_>(GenericIf::List::Queue{chosen(), parsed()});
        }
    }
    Wrapper text(char const* typeName) {
        Qor::String8 const value(input_.bytes(input_.byte() % 8));
        return value_(typeName, std::string("'a") + std::string(value.view()) + "'");
    }
    Wrapper parsed() {
        static constexpr std::array<char const*, 6> types{"U32",          "bool",          "U16",
                                                          "Kelp::IpAddr", "Kelp::EthAddr", "U64"};
        static constexpr std::array<char const*, 6> values{
            "5", "true", "7", "'192.0.2.1'", "'00:00:5e:00:53:01'", "18446744073709551615"};
        std::size_t const which = input_.byte() % types.size();
        return value_(types[which], values[which]);
    }
    static Wrapper value_(char const* typeName, std::string const& strep) {
        auto* const type = QorType::type(Name(typeName));
        return type ? type->genericIfFromStrep(Qor::String8(std::string_view(strep)), false)
                    : nullptr;
    }
    void walk(GenericIf& target) {
        int steps = 0;
        for (auto at = target.attributeIteratorConst(attributeOf(target)); at && steps < 20; ++at) {
            static_cast<void>(at.key());
            keep(at.value());
            ++steps;
        }
    }

    FuzzReader input_;
    std::vector<Wrapper> held_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Calls(textOf(data, size)).run();
    return 0;
}
