#include "JsonText.h"

#include <ovsdb/rpc/ProtocolError.h>
#include <ovsdb/rpc/RpcError.h>

#include <gtest/gtest.h>

namespace Ovsdb {
namespace {

TEST(RpcError, AStringIsTheErrorItself) {
    JsonText const told(R"("unknown method")");
    std::optional<RpcError> const error = replyError(told.root());
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind, RpcError::Kind::refused);
    EXPECT_EQ(error->text(), "unknown method");
}

TEST(RpcError, AnObjectHasErrorAndDetails) {
    JsonText const told(
        R"({"details":"get_schema request specifies unknown database x","error":"unknown database","syntax":"[]"})");
    EXPECT_EQ(replyError(told.root())->text(),
              "unknown database: get_schema request specifies unknown database x");
}

TEST(RpcError, NullIsNone) {
    JsonText const told("null");
    EXPECT_FALSE(replyError(told.root()));
}

TEST(RpcError, AnyOtherShapeStillIsAnError) {
    JsonText const told("[1,2]");
    EXPECT_EQ(replyError(told.root())->text(), "an error of unknown shape: [1,2]");
}

TEST(RpcError, AFailedOperationIsCounted) {
    JsonText const told(R"([{"count":0},{"error":"constraint violation","details":"why"},null])");
    std::optional<RpcError> const error = transactError(told.root(), 3);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind, RpcError::Kind::operation);
    EXPECT_EQ(error->text(), "constraint violation: why (operation 1)");
}

TEST(RpcError, AFailedCommitIsOneElementBeyondTheOperations) {
    JsonText const told(R"([{},{},{"error":"referential integrity violation"}])");
    std::optional<RpcError> const error = transactError(told.root(), 2);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind, RpcError::Kind::commit);
}

TEST(RpcError, CountZeroIsSuccess) {
    JsonText const told(R"([{"count":0}])");
    EXPECT_FALSE(transactError(told.root(), 1));
}

TEST(RpcError, AResultThatIsNoArrayIsRefused) {
    JsonText const told("{}");
    EXPECT_THROW(static_cast<void>(transactError(told.root(), 1)), ProtocolError);
}

}  // namespace
}  // namespace Ovsdb
