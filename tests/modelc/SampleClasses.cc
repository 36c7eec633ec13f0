// The classes that the compiler makes of the sample descriptions do what their description says.
#include <acme/LongNamesList.h>
#include <acme/SampleList.h>
#include <gtest/gtest.h>

namespace {

using namespace Acme;

TEST(SampleClasses, StartWithTheirDefaults) {
    auto const meter = meterFactory("m");
    EXPECT_EQ(meter->type(), DeviceKind::meter);
    EXPECT_EQ(meter->label(), "new");
    EXPECT_EQ(meter->reads(), 12U);
    EXPECT_EQ(meter->address(), Kelp::EthAddr());
    EXPECT_EQ(Qor::make<FineMeter>("f")->digits(), 8);
    EXPECT_EQ(Slot().front(), DeviceKind::meter);
}

TEST(SampleClasses, ConstantsAreAsDescribed) {
    EXPECT_EQ(Limits::channels(), 16);
    EXPECT_EQ(Limits::maker(), "");
    EXPECT_EQ(Limits::gateway(), Kelp::IpAddr());
    EXPECT_EQ(Limits::kind(), DeviceKind::source);
    EXPECT_EQ(Limits::period(), 2.0);
    EXPECT_EQ(Limits::offset(), -5);
    EXPECT_EQ(Limits::serial(), 0xffffffffffffffffU);
    EXPECT_EQ(Limits::quoted(), "main \"A\"\\");
}

TEST(SampleClasses, AnAddressedEntityHasNoNameAndHandsItsAddressUp) {
    Kelp::EthAddr const address("00:00:5e:00:53:01");
    auto const supply = Qor::make<FineSupply>(address);
    EXPECT_EQ(supply->address(), address);
    EXPECT_EQ(supply->name(), "");
    EXPECT_EQ(supply->type(), DeviceKind::source);
}

TEST(SampleClasses, AttributesAreNamedByTheirIdsThroughAllLevels) {
    auto const meter = Qor::make<FineMeter>("f");
    EXPECT_EQ(meter->attributeString(258), "type");
    EXPECT_EQ(meter->attributeString(260), "copy");
    EXPECT_EQ(meter->attributeString(386), "channel");
    EXPECT_EQ(meter->attributeString(515), "port");
    EXPECT_EQ(meter->attributeString(900), "unknown");
    EXPECT_TRUE(meter->qorIsCollection(386));
    EXPECT_TRUE(meter->qorIsCollection(515));
    EXPECT_FALSE(meter->qorIsCollection(514));
}

struct Watch : FineMeter::NotifieeConst {
    std::string heard;
    void onLabel() override { heard += "label "; }
    void onReads() override { heard += "reads "; }
    void onDigits() override { heard += "digits "; }
    void onPort(Kelp::IpAddr) override { heard += "port "; }
    void onNote(Qor::String8 key) override { heard += "note:" + std::string(key.view()) + " "; }
};

TEST(SampleClasses, EveryLevelTellsItsOwnHandlers) {
    auto const meter = Qor::make<FineMeter>("f");
    auto const watch = Qor::make<Watch>();
    watch->notifierIs(meter);
    meter->labelIs("x");
    meter->labelIs("x");
    meter->readsIs(13);
    meter->digitsIs(9);
    meter->portIs(Kelp::IpAddr("192.0.2.1"), true);
    meter->noteIs("a", "b");
    EXPECT_EQ(watch->heard, "label reads digits port note:a ");
    EXPECT_EQ(watch->notifier().ptr(), meter.ptr());
}

TEST(SampleClasses, OverridesAreCalledThroughTheBase) {
    auto const from = meterFactory("from");
    from->labelIs("old");
    Qor::Ptr<Device> const to = meterFactory("to");
    to->copy(from);
    EXPECT_EQ(to->label(), "meter old");
    EXPECT_EQ(meterFactory("m")->average(1, 3), 2);
    EXPECT_EQ(Meter::unitOf(DeviceKind::meter), "V");
}

TEST(SampleClasses, AnOwnerLetsEverythingGoAtItsEnd) {
    auto bench = benchFactory("b");
    auto const meter = bench->meterIs("m");
    auto const main = bench->mainIs("front");
    auto const annex = bench->annexIs("annex");
    bench->nearIs(Kelp::IpAddr("192.0.2.1"), meter);
    bench->farIs(Slot(), main);
    EXPECT_EQ(bench->meters(), 1U);
    EXPECT_EQ(meter->parent().ptr(), bench.ptr());
    EXPECT_EQ(main->parentAttrId(), 261);
    bench = nullptr;
    EXPECT_EQ(meter->parent().ptr(), nullptr);
    EXPECT_EQ(main->parent().ptr(), nullptr);
    EXPECT_EQ(annex->parent().ptr(), nullptr);
}

TEST(SampleClasses, ValuesAreOrderedAsDescribed) {
    Slot const low(Kelp::IpAddr("192.0.2.1"), DeviceKind::bench, Kelp::EthAddr());
    Slot const high(Kelp::IpAddr("192.0.2.2"), DeviceKind::unknownDevice, Kelp::EthAddr());
    EXPECT_LT(low, high);
    EXPECT_TRUE(!Slot());
    EXPECT_FALSE(!low);
    Channel const one(low, DeviceKind::meter);
    Channel const other(high, DeviceKind::meter);
    EXPECT_EQ(one < other, one.hash() < other.hash());
    Qor::U32 const words = Qor::oneAtATimeHash(Qor::hashWord(DeviceKind::meter), low.hash());
    EXPECT_EQ(one.hash(), words);
}

TEST(SampleClasses, TextFormsComeBackTheSame) {
    Slot const slot(Kelp::IpAddr("192.0.2.1"), DeviceKind::bench,
                    Kelp::EthAddr("00:00:5e:00:53:01"));
    Channel const channel(slot, DeviceKind::source);
    EXPECT_EQ(Qor::strepToValue<Channel>(valueToStrep(channel)), channel);
    EXPECT_EQ(valueToStrep(Reading()),
              "Value('Acme::Reading', ** {'from': '0.0.0.0', 'mean': 0.5, 'age': 0})");
}

TEST(SampleClasses, ValuesOfNumbersAreValuesAsOthersAre) {
    Shelf const shelf;
    EXPECT_TRUE(shelf.isCold());
    EXPECT_EQ(shelf.ware(), 0x100000000U);
    EXPECT_EQ(shelf.offset(), -5);
    Shelf const next(1, false, 3, -7, 9);
    EXPECT_LT(shelf, next);
    EXPECT_EQ(next.hash(), Qor::oneAtATimeHash(3U, 1U, 0xfffffff9U, 0U, 9U));
    Qor::String8 const text = valueToStrep(next);
    EXPECT_EQ(text,
              "Value('Acme::Shelf', ** {'row': 1, 'isCold': false, 'ware': 3, 'offset': -7, "
              "'slot': 9})");
    EXPECT_EQ(Qor::strepToValue<Shelf>(text), next);
    EXPECT_THROW(Qor::strepToValue<Shelf>("Value('Acme::Shelf', ** {'row': 65536})"),
                 Qor::RangeException);
}

TEST(SampleClasses, ListsNameAllClassesOfTheDescription) {
    EXPECT_EQ(SampleEntities::size, 6U);
    EXPECT_EQ(SampleValues::size, 5U);
    EXPECT_EQ(SampleEnumerations::size, 1U);
    EXPECT_EQ(LongNamesEntities::size, 3U);
}

TEST(SampleClasses, OfLongNamesWorkAlike) {
    auto const one = Qor::make<EntityWithALongNameOfItsOwn>("n");
    one->operationWithALongName("text", ValueWithALongNameOfItsOwn());
    EXPECT_EQ(one->attributeWithALongName(), "text");
    EXPECT_EQ(one->owningCollectionOfLongNamesIs("c")->parentAttrId(), 389);
    EXPECT_EQ(aFactory("a")->dIs("d")->name(), "d");
}

}  // namespace
