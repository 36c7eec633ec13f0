#include "JsonText.h"

#include <ovsdb/rpc/ProtocolError.h>
#include <ovsdb/rpc/RpcError.h>

#include <gtest/gtest.h>

namespace Ovsdb {
namespace {

TEST(RpcError, AStringIsTheErrorItself) {
    JsonText const json(R"("unknown method")");
    std::optional<RpcError> const error = replyError(json.root());
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind, RpcError::Kind::refused);
    EXPECT_EQ(error->text(), "unknown method");
}

TEST(RpcError, AnObjectHasErrorAndDetails) {
    JsonText const json(
        R"({"details":"get_schema request specifies unknown database x","error":"unknown database","syntax":"[]"})");
    EXPECT_EQ(replyError(json.root())->text(),
              "unknown database: get_schema request specifies unknown database x");
}

TEST(RpcError, NullIsNone) {
    JsonText const json("null");
    EXPECT_FALSE(replyError(json.root()));
}

TEST(RpcError, AnyOtherShapeStillIsAnError) {
    JsonText const json("[1,2]");
    EXPECT_EQ(replyError(json.root())->text(), "an error of unknown shape: [1,2]");
}

TEST(RpcError, AFailedOperationIsCounted) {
    JsonText const json(R"([{"count":0},{"error":"constraint violation","details":"why"},null])");
    std::optional<RpcError> const error = transactError(json.root(), 3);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind, RpcError::Kind::operation);
    EXPECT_EQ(error->text(), "constraint violation: why (operation 1)");
}

TEST(RpcError, AFailedCommitIsOneElementBeyondTheOperations) {
    JsonText const json(R"([{},{},{"error":"referential integrity violation"}])");
    std::optional<RpcError> const error = transactError(json.root(), 2);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind, RpcError::Kind::commit);
}

TEST(RpcError, CountZeroIsSuccess) {
    JsonText const json(R"([{"count":0}])");
    EXPECT_FALSE(transactError(json.root(), 1));
}

TEST(RpcError, AResultThatIsNoArrayIsRefused) {
    JsonText const json("{}");
    EXPECT_THROW(static_cast<void>(transactError(json.root(), 1)), ProtocolError);
}

}  // namespace
}  // namespace Ovsdb
