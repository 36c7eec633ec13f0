// Single values: every one of every class.
#include "EveryClass.h"

namespace Contract {
namespace {

class EveryScalar : public EveryClass {};
INSTANTIATE_TEST_SUITE_P(Models, EveryScalar, testing::ValuesIn(entityClasses()), ClassName());

TEST_P(EveryScalar, ChangeIsStoredAndToldOnceAndEqualValueTellsNobody) {
    forEach<Scalar>([&](Scalar const& a) {
        for (unsigned i = 0; i < a.values(); ++i) {
            bool const isChange = a.held(*entity_) != a.value(i);
            a.set(*entity_, i);
            EXPECT_EQ(a.held(*entity_), a.value(i));
            EXPECT_EQ(take(), isChange ? (AllTold{{a.id, ""}}) : AllTold());
            a.set(*entity_, i);
            EXPECT_EQ(take(), AllTold()) << a.value(i);
        }
    });
}

TEST_P(EveryScalar, DefaultSetAgainTellsNobody) {
    forEach<Scalar>([&](Scalar const& a) {
        std::string const before = a.held(*entity_);
        a.setToHeld(*entity_);
        EXPECT_EQ(take(), AllTold());
        EXPECT_EQ(a.held(*entity_), before);
    });
}

TEST_P(EveryScalar, SetsWithoutNotifiees) {
    auto const fresh = class_.make();
    forEach<Scalar>([&](Scalar const& a) {
        for (unsigned i = 0; i < a.values(); ++i) {
            a.set(*fresh, i);
            EXPECT_EQ(a.held(*fresh), a.value(i));
        }
    });
}

TEST_P(EveryScalar, ConstructorAttributeKeepsItsArgument) {
    forEach<Attribute>([&](Attribute const& a) {
        if (a.kind == Kind::constField) {
            EXPECT_EQ(a.held(*class_.make(1)), "'00:00:5e:00:53:01'");
            EXPECT_EQ(a.held(*class_.make(2)), "'00:00:5e:00:53:02'");
        }
    });
}

}  // namespace
}  // namespace Contract
