// Descriptions whose bytes were changed at random: they are refused by name, or taken, and what is
// taken can be made, held and sent.
#include "../../unit/attrlog/Peers.h"
#include "../../unit/dynamic/Described.h"
#include "../../unit/dynamic/Tree.h"

#include <qor/dynamic/DynamicAdapter.h>
#include <qor/generic/GenericException.h>

#include <tests/support/Settings.h>

#include <gtest/gtest.h>

namespace {

using Qor::DescribedTypes;
using Qor::Name;
using Qor::QorType;

std::string bytesOf(QorType& type) {
    using Token = Qor::NboAttrLog::Out::TransactToken;
    auto const out = Qor::make<Qor::NboAttrLog::Out>();
    out->beginFrame(Qor::NboAttrLog::FrameKind::link, {});
    out << Token::begin;
    Described::renamed(Qor::TypeDescription::of(type)).put(out);
    out << Token::end;
    std::string const frame = takeBytes(*out);
    constexpr std::size_t front = 28;
    return frame.substr(front, frame.size() - front - 1);
}

void change(Tree::Random& random, std::string& bytes) {
    std::size_t const at = random() % bytes.size();
    switch (random() % 4) {
        case 0:
            bytes[at] = static_cast<char>(bytes[at] ^ (1 << random() % 8));
            break;
        case 1:
            bytes[at] = static_cast<char>(random());
            break;
        case 2:
            bytes.erase(at, random() % 8);
            break;
        default:
            bytes.insert(at, bytes.substr(random() % bytes.size(), random() % 16));
            break;
    }
}

// Whether the bytes were taken as a description.
bool taken(DescribedTypes& types, std::string const& bytes) {
    auto const in = Qor::make<Qor::NboAttrLog::In>();
    in->receive(bytes);
    try {
        types.take(*in);
        return true;
    } catch (Qor::Exception const&) {
        return false;
    }
}

// What is of a type that can't be held is refused when it is read.
std::string dump(Qor::Ptr<Qor::Entity> const& entity) {
    try {
        return Tree::dump(entity);
    } catch (Qor::GenericException const&) {
        return "refused";
    }
}

void use(QorType& type) {
    auto const made = type.newInstance(Name("made"));
    if (!made) return;
    auto const entity = Qor::dynamicCast<Qor::DynamicEntity>(made);
    if (!entity) return;
    Peers peers;
    auto const copy = type.newInstance(Name("made"));
    peers.reader.copy = copy;
    peers.source.send(entity);
    peers.settle();
    EXPECT_EQ(dump(copy), dump(made));
    EXPECT_EQ(Qor::TypeDescription::of(type).fullName, Name(type.fullName()));
}

class DescriptionBytes : public testing::TestWithParam<unsigned> {};

TEST_P(DescriptionBytes, AreRefusedOrTaken) {
    Tree::Random random(GetParam());
    std::vector<std::string> originals;
    for (QorType* const type : QorType::types()) {
        if (type->fullName().view().starts_with("Vgw::")) originals.push_back(bytesOf(*type));
    }
    for (int round = 0; round < 40; ++round) {
        DescribedTypes types{DescribedTypes::Quota()};
        for (std::string bytes : originals) {
            if (random() % 6 == 0) change(random, bytes);
            taken(types, bytes);
        }
        auto const before = QorType::types();
        try {
            types.complete();
        } catch (Qor::Exception const& refused) {
            EXPECT_GT(refused.message().length(), 0U);
            EXPECT_EQ(QorType::types(), before);
            continue;
        }
        for (QorType* const type : QorType::types()) {
            if (type->isDescribed() && type->isEntity()) use(*type);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, DescriptionBytes,
                         testing::Range(1U, 1U + unsigned{Settings::volume(20, 10, 3)}));

}  // namespace
