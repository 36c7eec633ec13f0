#include <qor/core/Exception.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using Qor::Exception;

TEST(IdBitArray, HoldsWhatWasAdded) {
    Exception::IdBitArray ids;
    EXPECT_FALSE(ids.contains(12));
    for (Exception::Id const id : {0U, 12U, 42U, 48U, 63U, 64U, 127U}) {
        ids.add(id);
        EXPECT_TRUE(ids.contains(id)) << id;
    }
    EXPECT_FALSE(ids.contains(13));
    EXPECT_FALSE(ids.contains(128));
}

TEST(IdBitArray, CopyIsIndependent) {
    Exception::IdBitArray const first(12);
    auto second = first;
    second.add(48);
    EXPECT_TRUE(second.contains(12));
    EXPECT_FALSE(first.contains(48));
}

TEST(IdBitArrayDeathTest, IdOverTheLimitStops) {
    Exception::IdBitArray ids;
    EXPECT_DEATH(ids.add(128), "Assertion 'id < limit' failed");
}

TEST(Exception, MessageIsWhat) {
    Exception const exception("words", Exception::IdBitArray(12), true);
    EXPECT_STREQ(exception.what(), "words");
    EXPECT_EQ(exception.message(), "words");
    EXPECT_TRUE(exception.ids().contains(12));
    EXPECT_TRUE(exception.isInternal());
}

TEST(Exception, RangeExceptionHasId12) {
    try {
        Qor::throwRangeException("null ValidPtr");
    } catch (std::exception const& caught) {
        EXPECT_STREQ(caught.what(), "null ValidPtr");
        auto const* const exception = dynamic_cast<Qor::RangeException const*>(&caught);
        ASSERT_NE(exception, nullptr);
        EXPECT_TRUE(exception->ids().contains(12));
        EXPECT_FALSE(exception->isInternal());
    }
    EXPECT_THROW(Qor::throwRangeException(Qor::String8("text")), Qor::RangeException);
}

TEST(Exception, InternalExceptionIsAFaultOfTheProgram) {
    EXPECT_THROW(Qor::throwInternalException("x"), Qor::InternalException);
    try {
        Qor::throwInternalException(Qor::String8("x"));
    } catch (Exception const& exception) {
        EXPECT_TRUE(exception.isInternal());
    }
}

TEST(Exception, StreamExceptionsHaveTheirIds) {
    EXPECT_TRUE(Qor::AttrLogEntityException("x").ids().contains(42));
    EXPECT_TRUE(Qor::AttrLogRecordException("x").ids().contains(48));
    EXPECT_TRUE(Qor::EntityIdUnavailableException("x").ids().contains(48));
    EXPECT_TRUE(Qor::NameInUseException("x").ids().contains(16));
}

TEST(Exception, CopySharesTheMessage) {
    Qor::RangeException const first("words");
    auto const second = first;
    EXPECT_EQ(first.message().data(), second.message().data());
}

}  // namespace
