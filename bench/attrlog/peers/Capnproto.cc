#include <Record.capnp.h>
#include <capnp/message.h>
#include <capnp/serialize.h>
#include <kj/io.h>

#include <array>

#include "../mixed/MixedPeer.h"

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

kj::ArrayPtr<kj::byte const> bytesOf(std::string_view text) {
    return {reinterpret_cast<kj::byte const*>(text.data()), text.size()};
}
std::string_view viewOf(capnp::Data::Reader const& data) {
    if (data.size() == 0) return "?";
    return {reinterpret_cast<char const*>(data.begin()), data.size()};
}

// Sixty-four in a message. Its builder leaves the first segment empty behind it.
class MixedCapnproto {
  public:
    static constexpr std::size_t batch = 64;

    std::uint64_t write(MixedRecord const* first, MixedRecord const* last, std::byte* room) {
        capnp::MallocMessageBuilder message(kj::arrayPtr(segment_.data(), segment_.size()));
        auto const count = static_cast<unsigned>(last - first);
        auto records = message.initRoot<Proto::Batch>().initRecords(count);
        for (unsigned i = 0; i < count; ++i) set(records[i], first[i]);
        kj::ArrayOutputStream out(kj::arrayPtr(reinterpret_cast<kj::byte*>(room), longest));
        capnp::writeMessage(out, message);
        return out.getArray().size();
    }
    bool read(Mixture const& mixture, std::byte const* message, std::uint64_t length,
              Taken& taken) {
        capnp::FlatArrayMessageReader reader(
            kj::arrayPtr(reinterpret_cast<capnp::word const*>(message), length / 8));
        for (auto const record : reader.getRoot<Proto::Batch>().getRecords()) {
            if (!take(mixture.whatOf(record.getEntity(), record.getAttribute()), record, taken)) {
                return false;
            }
        }
        return true;
    }

  private:
    static constexpr std::size_t longest = 160 * batch;

    static void set(Proto::Mixed::Builder mixed, MixedRecord const& record) {
        mixed.setEntity(record.entity);
        mixed.setAttribute(record.attribute);
        switch (record.shape) {
            case Shape::flag:
                return mixed.setFlag(record.number != 0);
            case Shape::number16:
                return mixed.setNumber16(static_cast<std::uint16_t>(record.number));
            case Shape::number32:
                return mixed.setNumber32(static_cast<std::uint32_t>(record.number));
            case Shape::number64:
                return mixed.setNumber64(record.number);
            case Shape::mac:
                return mixed.setMac(record.number);
            case Shape::text:
                return mixed.setText(bytesOf(record.text));
            default:
                return setMember(mixed, record);
        }
    }
    static void setMember(Proto::Mixed::Builder mixed, MixedRecord const& record) {
        switch (record.shape) {
            case Shape::rowKey:
                return mixed.setRow(bytesOf(record.key));
            case Shape::rowKeyGone:
                return mixed.setRowGone(bytesOf(record.key));
            case Shape::pairKey:
                return setPair(mixed.initPair(), record);
            case Shape::pairKeyGone:
                return setPair(mixed.initPairGone(), record);
            case Shape::numberToText: {
                auto binding = mixed.initBinding();
                binding.setKey(static_cast<std::uint16_t>(record.second));
                return binding.setText(bytesOf(record.text));
            }
            case Shape::textToText: {
                auto word = mixed.initWord();
                word.setKey(bytesOf(record.key));
                return word.setText(bytesOf(record.text));
            }
            default: {
                auto reference = mixed.initReference();
                reference.setAddress(record.second);
                return reference.setTarget(record.number);
            }
        }
    }
    static void setPair(auto pair, MixedRecord const& record) {
        pair.setMac(record.number);
        pair.setVni(record.second);
    }

    static bool take(What what, Proto::Mixed::Reader const& mixed, Taken& taken) {
        switch (what) {
            case What::none:
                return false;
            case What::flag:
                taken.number(mixed.getFlag() ? 1 : 0);
                return true;
            case What::port:
                taken.number(mixed.getNumber16());
                return true;
            case What::address:
            case What::tunnelKey:
            case What::state:
                taken.number(mixed.getNumber32());
                return true;
            case What::counter:
                taken.number(mixed.getNumber64());
                return true;
            case What::mac:
                taken.number(mixed.getMac());
                return true;
            default:
                takeMember(what, mixed, taken);
                return true;
        }
    }
    static void takeMember(What what, Proto::Mixed::Reader const& mixed, Taken& taken) {
        switch (what) {
            case What::portRow:
                return taken.text(viewOf(mixed.getRow()));
            case What::portRowGone:
                return taken.text(viewOf(mixed.getRowGone()));
            case What::pair:
                return takePair(mixed.getPair(), taken);
            case What::pairGone:
                return takePair(mixed.getPairGone(), taken);
            case What::binding:
                taken.number(mixed.getBinding().getKey());
                return taken.text(viewOf(mixed.getBinding().getText()));
            case What::word:
                taken.text(viewOf(mixed.getWord().getKey()));
                return taken.text(viewOf(mixed.getWord().getText()));
            case What::reference:
                taken.number(mixed.getReference().getAddress());
                return taken.number(mixed.getReference().getTarget());
            default:
                return taken.text(viewOf(mixed.getText()));
        }
    }
    static void takePair(auto pair, Taken& taken) {
        taken.number(pair.getMac());
        taken.number(pair.getVni());
    }

    std::array<capnp::word, longest / 8> segment_{};
};

}  // namespace

void addCapnproto() {
    addPeer<Capnproto>("capnproto");
    addMixedPeer<MixedCapnproto>("capnproto");
}

}  // namespace Bench
