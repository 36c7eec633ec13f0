// Every attribute of every class with every operation and each wrong argument: what is refused is
// refused by the exception that its table names, with the name that goes with it, before anything
// has changed and anybody was told.
#include <span>

#include "EveryWrapper.h"

namespace Contract {
namespace {

enum class Given { nothing, right, wrong, list, emptyList, wrongList, surplusList };

std::string const constText = "const attempting to modify a const instance";
std::string const noList = "type Qor::GenericIf::List_";

// From the operations' table alone; empty for what is accepted.
class Expected {
  public:
    Expected(Attribute const& attribute, Qor::QorAttr const& record, std::string wrong)
        : attribute_(attribute), record_(record), wrong_("type " + std::move(wrong)) {}

    std::string of(unsigned op, Given key, Given value) const {
        switch (attribute_.kind) {
            case Kind::scalar:
                return ofScalar(op, key, value);
            case Kind::constField:
                return op == 0 ? noKey(key) : unsupported(op);
            case Kind::valueMap:
            case Kind::refMap:
                return ofMap(op, key, value, "type qor_index");
            case Kind::childMap:
                return op == 128 ? ofChild(key, value) : ofMap(op, key, value, "type name");
            case Kind::child:
                return op == 128              ? ofChild(key, value)
                       : op == 0 || op == 129 ? noKey(key)
                                              : unsupported(op);
            case Kind::operation:
                return op == 0 ? ofList(key, "type List") : unsupported(op);
        }
        return "no kind";
    }

  private:
    std::string ofScalar(unsigned op, Given key, Given value) const {
        if (op == 0) {
            return noKey(key);
        }
        if (op != 128) {
            return unsupported(op);
        }
        return key != Given::nothing ? noKey(key) : needed(value, "type " + attribute_.name);
    }
    std::string ofMap(unsigned op, Given key, Given value, std::string const& missing) const {
        bool const isSet = op == 128 && attribute_.kind != Kind::childMap;
        if (op == 1 || op == 2) {
            return "";
        }
        if (op != 0 && op != 3 && op != 129 && !isSet) {
            return unsupported(op);
        }
        std::string const ofKey = needed(key, missing);
        return isSet && ofKey.empty() ? needed(value, "type " + attribute_.name) : ofKey;
    }
    std::string ofChild(Given key, Given value) const {
        return key != Given::nothing ? noKey(key) : ofList(value, "type List");
    }
    std::string ofList(Given list, std::string const& missing) const {
        bool const takesAny = !record_.arguments().empty();
        switch (list) {
            case Given::nothing:
                return missing;
            case Given::right:
            case Given::wrong:
                return noList;
            case Given::list:
                return "";
            case Given::emptyList:
                return takesAny ? "type " + std::string(record_.arguments()[0].name.view()) : "";
            case Given::wrongList:
                return takesAny ? wrong_ : surplus();
            case Given::surplusList:
                return surplus();
        }
        return "no list";
    }
    std::string needed(Given what, std::string const& missing) const {
        return what == Given::nothing ? missing
               : what == Given::right ? ""
               : what == Given::wrong ? wrong_
                                      : "type List";
    }
    std::string surplus() const { return "surplus " + attribute_.name; }
    std::string noKey(Given key) const {
        return key == Given::nothing ? "" : "no key " + attribute_.name;
    }
    std::string unsupported(unsigned op) const {
        return "operation " + std::to_string(op) + " of " + attribute_.name;
    }

    Attribute const& attribute_;
    Qor::QorAttr const& record_;
    std::string wrong_;
};

class EveryRefusal : public EveryWrapper {
  protected:
    // The one type that is neither a key, nor a value, nor an argument anywhere beside its own.
    Wrapper const wrong_ = Qor::QorType::type("Vgw::EncapsulationType")
                               ->genericIf(static_cast<void const*>(nullptr), false);

    Wrapper rightArgument(Qor::QorAttr::Argument const& argument) const {
        if (argument.type == "Qor::Name") {
            return nameValue(1);
        }
        Qor::QorType* const declared = Qor::QorType::type(argument.type);
        if (declared->isEntity()) {
            return wrapperOf(class_.make(1));
        }
        return declared->genericIf(static_cast<void const*>(nullptr), false);
    }
    Wrapper list(Qor::QorAttr const& record, Given given) const {
        auto const arguments = record.arguments();
        Qor::GenericIf::List::Queue queue;
        if (given == Given::list || given == Given::surplusList) {
            for (auto const& argument : arguments) {
                queue.enq(rightArgument(argument));
            }
        }
        if (given == Given::surplusList || given == Given::wrongList) {
            queue.enq(wrong_);
        }
        return Qor::make<Qor::GenericIf::List_>(queue);
    }
    Wrapper made(Attribute const& a, Given given, bool isKey) const {
        Qor::QorAttr::Ptr const record = type().attr(a.id);
        switch (given) {
            case Given::nothing:
                return nullptr;
            case Given::wrong:
                return wrong_;
            case Given::right:
                break;
            default:
                return list(*record, given);
        }
        if (a.isKeyed() && isKey) {
            return key(dynamic_cast<Keyed const&>(a), 0);
        }
        if (auto const* const scalar = dynamic_cast<Scalar const*>(&a)) {
            return value(a, scalar->value(0));
        }
        auto const* const mapped = dynamic_cast<Mapped const*>(&a);
        return mapped ? value(*mapped, 1) : nameValue(1);
    }
    void expectRefused(Attribute const& a, Expected const& expected, unsigned id, Given asKey,
                       Given asValue) const {
        std::string const refusal = expected.of(id, asKey, asValue);
        if (refusal.empty()) {
            return;  // what is accepted has tests of its own
        }
        Wrapper const asked = made(a, asKey, true);
        Wrapper const given = made(a, asValue, false);
        std::string const found = raised([&] { op(a, OpId(id), asked, given); });
        // Where both are wrong, either may be named.
        bool const isNamed = found == refusal || found == expected.of(id, Given::right, asValue);
        EXPECT_TRUE(isNamed) << found << "; expected " << refusal << " of operation " << id
                             << ", key " << int(asKey) << ", value " << int(asValue);
    }
    void expectUntouched(Attribute const& a,
                         std::map<Qor::AttributeId, std::string> const& before) {
        EXPECT_EQ(held(*entity_), before) << a.name;
        EXPECT_EQ(take(), AllTold()) << a.name;
    }
    /// What all attributes hold when each has been changed once.
    std::map<Qor::AttributeId, std::string> changed() {
        forEachChangeable([&](Attribute const& a) { a.change(*entity_); });
        take();
        return held(*entity_);
    }
};
INSTANTIATE_TEST_SUITE_P(Models, EveryRefusal, testing::ValuesIn(entityClasses()), ClassName());

constexpr unsigned everyOp[] = {0,   1,   2,   3,   4,   127, 128, 129,
                                130, 255, 256, 257, 261, 262, 263, 0xFFFFFFFF};
constexpr Given everyGiven[] = {Given::nothing,   Given::right,     Given::wrong,      Given::list,
                                Given::emptyList, Given::wrongList, Given::surplusList};

// An operation that no attribute has is refused whatever is given with it.
std::span<Given const> givenWith(unsigned op) {
    bool const isKnown = op < 4 || op == 128 || op == 129;
    return std::span(everyGiven).first(isKnown ? std::size(everyGiven) : 2);
}

TEST_P(EveryRefusal, IsNamedAndComesBeforeAnyChange) {
    auto const before = changed();
    forEach<Attribute>([&](Attribute const& a) {
        Expected const expected(a, *type().attr(a.id), "EncapsulationType");
        for (unsigned const id : everyOp) {
            for (Given const asKey : givenWith(id)) {
                for (Given const asValue : givenWith(id)) {
                    expectRefused(a, expected, id, asKey, asValue);
                }
            }
        }
        expectUntouched(a, before);
    });
}

TEST_P(EveryRefusal, ConstWrapperIsAskedNothingElseFirst) {
    auto const before = changed();
    Wrapper const wrapper = wrapperOf(entity_, true);
    EXPECT_TRUE(wrapper->isConst());
    auto ids = std::vector<Qor::AttributeId>{0, 6, 154, 31000, -1};
    for (Attribute const* const a : class_.attributes) {
        ids.push_back(a->id);
    }
    for (Qor::AttributeId const id : ids) {
        for (unsigned const op : {128U, 129U, 130U, 200U, 255U}) {
            EXPECT_EQ(raised([&] { wrapper->attributeOp(id, OpId(op), wrong_, wrong_); }),
                      constText)
                << id << " operation " << op;
        }
    }
    EXPECT_EQ(held(*entity_), before);
    EXPECT_EQ(take(), AllTold());
}

TEST_P(EveryRefusal, OperationsBesideTheRangeOfWritesPassTheConstTest) {
    Wrapper const wrapper = wrapperOf(entity_, true);
    forEach<Attribute>([&](Attribute const& a) {
        for (unsigned const id : {127U, 256U}) {
            EXPECT_EQ(raised([&] { wrapper->attributeOp(a.id, OpId(id)); }),
                      "operation " + std::to_string(id) + " of " + a.name);
        }
    });
}

TEST_P(EveryRefusal, ReadsThroughAConstWrapperGiveConstWrappers) {
    Wrapper const wrapper = wrapperOf(entity_, true);
    changed();
    forEach<Attribute>([&](Attribute const& a) {
        if (a.kind == Kind::operation) {
            return;
        }
        auto const* const keyed = dynamic_cast<Keyed const*>(&a);
        Wrapper const result =
            wrapper->attributeOp(a.id, OpId::opGet, keyed ? key(*keyed, 1) : nullptr);
        ASSERT_TRUE(result);
        EXPECT_TRUE(result->isConst());
        EXPECT_FALSE(op(a, OpId::opGet, keyed ? key(*keyed, 1) : nullptr)->isConst());
    });
}

TEST_P(EveryRefusal, UnknownAttributeIsRefusedForEveryOperation) {
    for (Qor::AttributeId const id : {1, 2, 257, 300, 31000, -1}) {
        for (unsigned const op : everyOp) {
            std::string const refusal =
                raised([&] { wrapper_->attributeOp(id, OpId(op), wrong_, wrong_); });
            EXPECT_TRUE(refusal.starts_with("unknown attribute ")) << refusal;
        }
    }
}

TEST_P(EveryRefusal, WrapperWithoutAnEntityTouchesNothing) {
    Wrapper const wrapper = type().genericIf_(nullptr, false);
    ASSERT_TRUE(wrapper);
    EXPECT_FALSE(wrapper->entity());
    EXPECT_EQ(wrapper->strRep(), "null");
    std::string const refusal = "type " + class_.name.substr(std::string("Vgw::").size());
    forEach<Attribute>([&](Attribute const& a) {
        EXPECT_EQ(raised([&] { wrapper->attributeOp(a.id); }), refusal);
    });
    Qor::Ptr<Qor::PtrInterface> const stranger = Qor::make<Qor::GenericIf::List_>();
    EXPECT_FALSE(type().genericIf_(stranger.ptr(), false)->entity()) << "of another class";
}

}  // namespace
}  // namespace Contract
