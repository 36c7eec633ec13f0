#include <Record_generated.h>

#include <array>

#include "../mixed/MixedPeer.h"

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

// Sixty-four in a message, so that those of one shape share their table of fields.
class MixedFlatbuffers {
  public:
    static constexpr std::size_t batch = 64;

    std::uint64_t write(MixedRecord const* first, MixedRecord const* last, std::byte* room) {
        builder_.Clear();
        std::size_t count = 0;
        for (; first != last; ++first) made_[count++] = make(*first);
        auto const all = builder_.CreateVector(made_.data(), count);
        builder_.Finish(Flat::CreateBatch(builder_, all));
        std::memcpy(room, builder_.GetBufferPointer(), builder_.GetSize());
        return builder_.GetSize();
    }
    bool read(Mixture const& mixture, std::byte const* message, std::uint64_t length,
              Taken& taken) {
        auto const* const bytes = reinterpret_cast<std::uint8_t const*>(message);
        flatbuffers::Verifier verifier(bytes, length);
        if (!verifier.VerifyBuffer<Flat::Batch>(nullptr)) return false;
        auto const* const records = flatbuffers::GetRoot<Flat::Batch>(bytes)->records();
        if (records == nullptr) return false;
        for (auto const* const mixed : *records) {
            take(mixture.whatOf(mixed->entity(), mixed->attribute()), *mixed, taken);
        }
        return true;
    }

  private:
    flatbuffers::Offset<flatbuffers::Vector<std::uint8_t>> put(std::string_view text) {
        if (text.empty()) return 0;
        return builder_.CreateVector(reinterpret_cast<std::uint8_t const*>(text.data()),
                                     text.size());
    }
    flatbuffers::Offset<Flat::Mixed> make(MixedRecord const& record) {
        auto const text = put(record.text);
        auto const key = put(record.key);
        Flat::MixedBuilder mixed(builder_);
        mixed.add_entity(record.entity);
        setValue(mixed, record);
        mixed.add_attribute(record.attribute);
        if (record.second != 0) mixed.add_second(record.second);
        if (!text.IsNull()) mixed.add_text(text);
        if (!key.IsNull()) mixed.add_key(key);
        return mixed.Finish();
    }
    static void setValue(Flat::MixedBuilder& mixed, MixedRecord const& record) {
        switch (record.shape) {
            case Shape::flag:
                return mixed.add_flag(record.number != 0);
            case Shape::number16:
                return mixed.add_number16(static_cast<std::uint16_t>(record.number));
            case Shape::number32:
                return mixed.add_number32(static_cast<std::uint32_t>(record.number));
            default:
                return mixed.add_number64(record.number);
        }
    }
    static std::string_view view(flatbuffers::Vector<std::uint8_t> const* text) {
        if (text == nullptr) return "?";
        return {reinterpret_cast<char const*>(text->data()), text->size()};
    }
    static void take(What what, Flat::Mixed const& mixed, Taken& taken) {
        switch (what) {
            case What::none:
                return;
            case What::flag:
                return taken.number(mixed.flag() ? 1 : 0);
            case What::port:
                return taken.number(mixed.number16());
            case What::address:
            case What::tunnelKey:
            case What::state:
                return taken.number(mixed.number32());
            case What::counter:
            case What::mac:
                return taken.number(mixed.number64());
            case What::rowText:
            case What::otherRowText:
            case What::shortText:
                return taken.text(view(mixed.text()));
            default:
                return takeMember(what, mixed, taken);
        }
    }
    static void takeMember(What what, Flat::Mixed const& mixed, Taken& taken) {
        switch (what) {
            case What::portRow:
            case What::portRowGone:
                return taken.text(view(mixed.key()));
            case What::binding:
                taken.number(mixed.second());
                return taken.text(view(mixed.text()));
            case What::word:
                taken.text(view(mixed.key()));
                return taken.text(view(mixed.text()));
            default:
                taken.number(mixed.number64());
                return taken.number(mixed.second());
        }
    }

    flatbuffers::FlatBufferBuilder builder_;
    std::array<flatbuffers::Offset<Flat::Mixed>, batch> made_;
};

}  // namespace

void addFlatbuffers() {
    addPeer<Flatbuffers>("flatbuffers");
    addMixedPeer<MixedFlatbuffers>("flatbuffers");
}

}  // namespace Bench
