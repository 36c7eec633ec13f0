#include "Mixture.h"

#include "../../maps/Keys.h"

namespace Bench {

namespace {

struct Share {
    What what;
    Shape shape;
    Mixture::Class of;
    std::int32_t attribute;
    unsigned percent;
};

// What an agent sends while it runs: statistics come all the time; a remote MAC row that comes or
// moves is an Ethernet and an IPv4 address and two texts of 36 characters, and a pair in its
// locator's set; switches, ports and bindings change seldom, and what an operator configures hardly
// ever. No entity has a u8 or a prefix.
constexpr Share shares[] = {
    {What::counter, Shape::number64, Mixture::bindingStats, 386, 20},
    {What::mac, Shape::mac, Mixture::remoteMac, 386, 9},
    {What::address, Shape::number32, Mixture::remoteMac, 389, 9},
    {What::rowText, Shape::text, Mixture::remoteMac, 387, 9},
    {What::otherRowText, Shape::text, Mixture::remoteMac, 388, 9},
    {What::shortText, Shape::text, Mixture::logicalSwitch, 387, 6},
    {What::tunnelKey, Shape::number32, Mixture::logicalSwitch, 388, 6},
    {What::port, Shape::number16, Mixture::config, 262, 2},
    {What::flag, Shape::flag, Mixture::config, 258, 3},
    {What::state, Shape::number32, Mixture::sessionStatus, 258, 3},
    {What::portRow, Shape::rowKey, Mixture::physicalSwitch, 388, 4},
    {What::portRowGone, Shape::rowKeyGone, Mixture::physicalSwitch, -388, 2},
    {What::pair, Shape::pairKey, Mixture::locator, 389, 6},
    {What::pairGone, Shape::pairKeyGone, Mixture::locator, -389, 3},
    {What::binding, Shape::numberToText, Mixture::physicalPort, 388, 5},
    {What::word, Shape::textToText, Mixture::locator, 388, 2},
    {What::reference, Shape::addressToEntity, Mixture::database, 264, 2},
};

constexpr unsigned sum() {
    unsigned all = 0;
    for (Share const& share : shares) all += share.percent;
    return all;
}
static_assert(sum() == 100);

}  // namespace

Mixture::Mixture() : uuids_(uuids(rows * members, 3)), missing_(uuids(rows * members, 5)) {
    for (std::size_t row = 0; row < rows; ++row) words_.push_back("leaf " + std::to_string(row));
    auto const order = shuffledOrder(size);
    records_.resize(size);
    std::size_t at = 0;
    for (Share const& share : shares) {
        if (share.attribute > 0) {
            whats_[share.of][static_cast<std::size_t>(share.attribute) - 258] = share.what;
        }
        for (std::size_t i = 0; i < share.percent * size / 100; ++i, ++at) {
            std::uint32_t const place = order[at];
            auto const row = static_cast<std::uint8_t>(place % rows);
            auto const member = static_cast<std::uint8_t>(place / rows % members);
            records_[place] = {
                share.what, share.shape, row, member, share.attribute, entityId(share.of, row),
                0,          0,           {},  {}};
            fill(records_[place]);
        }
    }
    for (MixedRecord const& record : records_) all_.take(record);
}

std::string_view Mixture::option(std::size_t member) {
    static constexpr std::string_view options[members] = {"enabled", "state", "forwarding",
                                                          "diagnostic"};
    return options[member];
}

// Only what the shape uses is set.
void Mixture::fill(MixedRecord& record) const {
    std::uint8_t const row = record.row;
    switch (record.what) {
        case What::counter:
            record.number = 1'000'000'007ULL * (row + 1U);
            break;
        case What::mac:
            record.number = macOf(row, 0);
            break;
        case What::address:
            record.number = 0xC0000200U + row;
            break;
        case What::rowText:
        case What::otherRowText:
            record.text = uuid(row, record.what == What::rowText ? 0 : 1);
            break;
        case What::shortText:
            record.text = word(row);
            break;
        case What::tunnelKey:
            record.number = 5000U + row;
            break;
        case What::port:
            record.number = 6632U + row;
            break;
        case What::flag:
        case What::state:
            record.number = row % (record.what == What::flag ? 2U : 4U);
            break;
        default:
            fillMember(record);
    }
}

void Mixture::fillMember(MixedRecord& record) const {
    std::uint8_t const row = record.row;
    std::uint8_t const member = record.member;
    switch (record.what) {
        case What::portRow:
            record.key = uuid(row, member);
            break;
        case What::portRowGone:
            record.key = missing(row, member);
            break;
        case What::pair:
        case What::pairGone:
            record.number = macOf(row, member);
            record.second = record.what == What::pair ? 5000U : 6000U;
            break;
        case What::binding:
            record.second = member + 100U;
            record.text = uuid(row, member);
            break;
        case What::word:
            record.key = option(member);
            record.text = word(row);
            break;
        case What::reference:
            record.second = 0xC0000200U + row;
            record.number = entityId(locator, row);
            break;
        default:
            break;
    }
}

}  // namespace Bench
