#include <Record_generated.h>

#include "Peers.h"

namespace Bench {

namespace {

// One builder, which is emptied for each message, as its makers advise.
class Flatbuffers {
  public:
    std::uint64_t write(Number const& number, std::byte* room) {
        builder_.Clear();
        builder_.Finish(
            Flat::CreateRecord(builder_, number.entity, number.attribute, number.value));
        std::memcpy(room, builder_.GetBufferPointer(), builder_.GetSize());
        return builder_.GetSize();
    }
    Number read(std::byte const* message, std::uint64_t length) {
        auto const* const bytes = reinterpret_cast<std::uint8_t const*>(message);
        flatbuffers::Verifier verifier(bytes, length);
        if (!Flat::VerifyRecordBuffer(verifier)) return {};
        auto const* const record = Flat::GetRecord(bytes);
        return {record->entity(), record->attribute(), record->value()};
    }

  private:
    flatbuffers::FlatBufferBuilder builder_;
};

}  // namespace

void addFlatbuffers() { addPeer<Flatbuffers>("flatbuffers"); }

}  // namespace Bench
