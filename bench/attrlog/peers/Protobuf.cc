#include <Record.pb.h>

#include "../mixed/MixedPeer.h"

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

// A message each: a batch of them would be an object of many, which no cache holds.
class MixedProtobuf {
  public:
    static constexpr std::size_t batch = 1;

    std::uint64_t write(MixedRecord const* record, MixedRecord const*, std::byte* room) {
        mixed_.Clear();
        mixed_.set_entity(record->entity);
        mixed_.set_attribute(record->attribute);
        setValue(*record);
        if (record->second != 0) mixed_.set_second(record->second);
        if (!record->text.empty()) mixed_.set_text(record->text.data(), record->text.size());
        if (!record->key.empty()) mixed_.set_key(record->key.data(), record->key.size());
        auto const length = mixed_.ByteSizeLong();
        mixed_.SerializeWithCachedSizesToArray(reinterpret_cast<std::uint8_t*>(room));
        return length;
    }
    bool read(Mixture const& mixture, std::byte const* message, std::uint64_t length,
              Taken& taken) {
        if (!mixed_.ParseFromArray(message, static_cast<int>(length))) return false;
        return take(mixture.whatOf(mixed_.entity(), mixed_.attribute()), taken);
    }

  private:
    void setValue(MixedRecord const& record) {
        switch (record.shape) {
            case Shape::flag:
                return mixed_.set_flag(record.number != 0);
            case Shape::number16:
                return mixed_.set_number16(static_cast<std::uint32_t>(record.number));
            case Shape::number32:
                return mixed_.set_number32(static_cast<std::uint32_t>(record.number));
            case Shape::number64:
            case Shape::addressToEntity:
                return mixed_.set_number64(record.number);
            case Shape::mac:
            case Shape::pairKey:
            case Shape::pairKeyGone:
                return mixed_.set_mac(record.number);
            default:
                return;
        }
    }
    bool take(What what, Taken& taken) const {
        switch (what) {
            case What::none:
                return false;
            case What::flag:
                taken.number(mixed_.flag() ? 1 : 0);
                return true;
            case What::port:
                taken.number(mixed_.number16());
                return true;
            case What::address:
            case What::tunnelKey:
            case What::state:
                taken.number(mixed_.number32());
                return true;
            case What::counter:
                taken.number(mixed_.number64());
                return true;
            case What::mac:
                taken.number(mixed_.mac());
                return true;
            default:
                takeMember(what, taken);
                return true;
        }
    }
    void takeMember(What what, Taken& taken) const {
        switch (what) {
            case What::portRow:
            case What::portRowGone:
                return taken.text(mixed_.key());
            case What::pair:
            case What::pairGone:
                taken.number(mixed_.mac());
                return taken.number(mixed_.second());
            case What::reference:
                taken.number(mixed_.number64());
                return taken.number(mixed_.second());
            case What::binding:
                taken.number(mixed_.second());
                return taken.text(mixed_.text());
            case What::word:
                taken.text(mixed_.key());
                return taken.text(mixed_.text());
            default:
                return taken.text(mixed_.text());
        }
    }

    Buffers::Mixed mixed_;
};

}  // namespace

void addProtobuf() {
    addPeer<Protobuf>("protobuf");
    addMixedPeer<MixedProtobuf>("protobuf");
}

}  // namespace Bench
