#include <ovsdb/rpc/RpcError.h>

#include <ovsdb/rpc/ProtocolError.h>

namespace Ovsdb {
namespace {

std::string member(simdjson::dom::object object, std::string_view name) {
    std::string_view text;
    if (object[name].get(text) != simdjson::SUCCESS) return {};
    return std::string(text);
}

}  // namespace

std::string RpcError::text() const {
    std::string said = error;
    if (!details.empty()) said += said.empty() ? details : ": " + details;
    if (kind == Kind::operation) said += " (operation " + std::to_string(operation) + ")";
    if (kind == Kind::commit) said += " (commit)";
    return said;
}

std::optional<RpcError> replyError(simdjson::dom::element error) {
    if (error.is_null()) return std::nullopt;
    RpcError failed;
    std::string_view text;
    simdjson::dom::object object;
    if (error.get(text) == simdjson::SUCCESS) {
        failed.error = text;
    } else if (error.get(object) == simdjson::SUCCESS) {
        failed.error = member(object, "error");
        failed.details = member(object, "details");
    } else {
        failed.error = "an error of unknown shape";
        failed.details = simdjson::minify(error);
    }
    return failed;
}

std::optional<RpcError> transactError(simdjson::dom::element result, std::size_t operations) {
    simdjson::dom::array outcomes;
    if (result.get(outcomes) != simdjson::SUCCESS)
        throw ProtocolError("the result of a transact is no array");
    std::size_t at = 0;
    for (simdjson::dom::element const outcome : outcomes) {
        simdjson::dom::object object;
        simdjson::dom::element error;
        if (outcome.get(object) == simdjson::SUCCESS &&
            object["error"].get(error) == simdjson::SUCCESS) {
            std::optional<RpcError> failed = replyError(outcome);
            failed->kind = at < operations ? RpcError::Kind::operation : RpcError::Kind::commit;
            failed->operation = at;
            return failed;
        }
        ++at;
    }
    return std::nullopt;
}

}  // namespace Ovsdb
