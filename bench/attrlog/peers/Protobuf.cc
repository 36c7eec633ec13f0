#include <Record.pb.h>

#include "Peers.h"

namespace Bench {

namespace {

// One message object, which is filled again for each message, as its makers advise.
class Protobuf {
  public:
    std::uint64_t write(Number const& number, std::byte* room) {
        record_.set_entity(number.entity);
        record_.set_attribute(number.attribute);
        record_.set_value(number.value);
        auto const length = record_.ByteSizeLong();
        record_.SerializeWithCachedSizesToArray(reinterpret_cast<std::uint8_t*>(room));
        return length;
    }
    Number read(std::byte const* message, std::uint64_t length) {
        if (!record_.ParseFromArray(message, static_cast<int>(length))) return {};
        return {record_.entity(), record_.attribute(), record_.value()};
    }

  private:
    Buffers::Record record_;
};

}  // namespace

void addProtobuf() { addPeer<Protobuf>("protobuf"); }

}  // namespace Bench
