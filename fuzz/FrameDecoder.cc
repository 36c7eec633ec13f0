// Any bytes in a ring: frames are cut out of them, or the stream ends with a name; whatever pieces
// they come in, the frames are the same, and a length that is claimed takes no memory.
#include <fuzz/FuzzInput.h>
#include <qor/attrlog/NboAttrLogIn.h>

#include <string>

namespace {

using Qor::NboAttrLog::Frame;
using Qor::NboAttrLog::In;

std::string decoded(std::string_view bytes, std::size_t piece) {
    auto const in = Qor::make<In>();
    in->greatestFrameIs(1U << 16);
    std::string told;
    try {
        while (!bytes.empty()) {
            auto const taken = in->receive(bytes.substr(0, piece));
            bytes.remove_prefix(taken);
            Frame frame;
            while (in->nextFrame(frame)) {
                told += std::to_string(frame.header.attributeId) + ',' +
                        std::to_string(frame.payloadSize) + ';';
                in->frameDone(frame);
            }
            if (in->room().empty()) in->grow();
            must(in->capacity() <= 4 * (in->received() + In::blockSize));
        }
    } catch (Qor::AttrLogRecordException const& failure) {
        told += failure.what();
    }
    return told;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    auto const bytes = textOf(data, size);
    must(decoded(bytes, 1) == decoded(bytes, 4096));
    return 0;
}
