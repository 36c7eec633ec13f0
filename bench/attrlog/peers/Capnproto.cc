#include <Record.capnp.h>
#include <capnp/message.h>
#include <capnp/serialize.h>
#include <kj/io.h>

#include <array>

#include "Peers.h"

namespace Bench {

namespace {

// A message each, in a first segment that is there already.
class Capnproto {
  public:
    std::uint64_t write(Number const& number, std::byte* room) {
        segment_.fill(capnp::word{});
        capnp::MallocMessageBuilder message(kj::arrayPtr(segment_.data(), segment_.size()));
        auto record = message.initRoot<Proto::Record>();
        record.setEntity(number.entity);
        record.setAttribute(number.attribute);
        record.setValue(number.value);
        kj::ArrayOutputStream out(
            kj::arrayPtr(reinterpret_cast<kj::byte*>(room), Messages::longest));
        capnp::writeMessage(out, message);
        return out.getArray().size();
    }
    Number read(std::byte const* message, std::uint64_t length) {
        capnp::FlatArrayMessageReader reader(
            kj::arrayPtr(reinterpret_cast<capnp::word const*>(message), length / 8));
        auto const record = reader.getRoot<Proto::Record>();
        return {record.getEntity(), record.getAttribute(), record.getValue()};
    }

  private:
    std::array<capnp::word, 16> segment_{};
};

}  // namespace

void addCapnproto() { addPeer<Capnproto>("capnproto"); }

}  // namespace Bench
