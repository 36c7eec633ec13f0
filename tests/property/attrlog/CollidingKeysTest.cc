// Keys of texts that a peer chooses so that all of them have one hash: they are taken in, looked up
// and removed in time that grows with their number, not with its square.
#include "ServedBytes.h"

#include <qor/core/TextHash.h>

#include <cstring>

namespace {

using namespace ServedBytes;

// In the hash of a text two words of eight bytes are multiplied, each mixed with a number first. A
// word that is mixed to zero makes that product zero, and what the other word holds counts for
// nothing.
std::string keyOfOneHash(std::size_t number) {
    std::string key(8, '\0');
    std::memcpy(key.data(), &Qor::TextHash::secret1, key.size());
    std::string const digits = std::to_string(10'000'000 + number);
    return key + digits;
}

TEST(CollidingKeys, AllHaveOneHash) {
    for (std::size_t i = 1; i < 100; ++i) {
        ASSERT_EQ(Qor::hashOfText(keyOfOneHash(i)), Qor::hashOfText(keyOfOneHash(0)));
    }
}

TEST(CollidingKeys, TextsOfASetAreTakenInLinearTime) {
    expectLinear(unit / 4, [](std::size_t count) {
        std::string bytes;
        for (std::size_t i = 0; i < count; ++i) {
            bytes += hostileFrame(0, leafId, 388, 1, 0, text(keyOfOneHash(i)) + "\1");
        }
        return bytes;
    });
}

// In the opposite order as well: where what is found last is what was put in first.
TEST(CollidingKeys, TextsThatComeBackwardsAndAgainAreTakenInLinearTime) {
    expectLinear(unit / 4, [](std::size_t count) {
        std::string bytes;
        for (int times = 0; times < 2; ++times) {
            for (std::size_t i = count; i-- > 0;) {
                bytes += hostileFrame(0, leafId, 388, 1, 0, text(keyOfOneHash(i)) + "\1");
            }
        }
        return bytes;
    });
}

TEST(CollidingKeys, TextsThatAreRemovedOneByOneAndByASnapshotTakeLinearTime) {
    expectLinear(unit / 4, [](std::size_t count) {
        std::string bytes = marker(leafId, 388, 0);
        for (std::size_t i = 0; i < count; ++i) {
            bytes += hostileFrame(0, leafId, 388, 1, 0, text(keyOfOneHash(i)) + "\1");
        }
        bytes += marker(leafId, 388, 2);
        std::uint32_t const removal = ~std::uint32_t{388} + 1;
        for (std::size_t i = 0; i < count; i += 2) {
            bytes += hostileFrame(0, leafId, removal, 1, 0, text(keyOfOneHash(i)));
        }
        return bytes + marker(leafId, 388, 0) + marker(leafId, 388, 2);
    });
}

TEST(CollidingKeys, NamesOfChildrenAndTheirEndTakeLinearTime) {
    expectLinear(unit / 4, [](std::size_t count) {
        std::string bytes;
        for (std::size_t i = 0; i < count; ++i) {
            bytes +=
                hostileFrame(0, dbId, 263, 1, 151, text(keyOfOneHash(i)) + number(1001 + 2 * i, 8));
        }
        return bytes + marker(dbId, 263, 0) + marker(dbId, 263, 2);
    });
}

}  // namespace
