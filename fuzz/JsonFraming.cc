// Any bytes in any pieces, given to the framer: the values that it finds do not depend on where the
// stream was cut, and neither does the refusal. The first byte of the input says how it is cut.
#include <fuzz/FuzzInput.h>
#include <ovsdb/rpc/JsonFramer.h>
#include <ovsdb/rpc/ProtocolError.h>
#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace {

struct Outcome {
    std::vector<std::string> values;
    std::string refusal;
    bool operator==(Outcome const&) const = default;
};

Outcome frame(std::string_view stream, std::size_t piece) {
    Outcome out;
    Ovsdb::JsonFramer framer;
    try {
        while (!stream.empty()) {
            std::size_t const n = std::min(piece, stream.size());
            auto const room = framer.prepare(n);
            std::copy_n(stream.data(), n, room.data());
            framer.commit(n);
            stream.remove_prefix(n);
            while (auto const value = framer.next()) {
                out.values.emplace_back(*value);
            }
        }
    } catch (Ovsdb::ProtocolError const& e) {
        out.refusal = e.what();
    }
    return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    std::string_view const stream = textOf(data + 1, size - 1);
    must(frame(stream, 1U + data[0] % 16) == frame(stream, stream.size() + 1));
    return 0;
}
