#include <vgwd/serve/Quotas.h>

#include <limits>

namespace Vgwd {
namespace {

template <class Count>
Count sum(Count a, Count b) {
    Count const most = std::numeric_limits<Count>::max();
    return a > most - b ? most : static_cast<Count>(a + b);
}

template <class Count>
Count difference(Count a, Count b) {
    return a > b ? static_cast<Count>(a - b) : Count{0};
}

bool move(std::uint64_t& count, std::uint64_t from, std::uint64_t to, std::uint64_t limit) {
    count = sum(difference(count, from), to);
    return count <= limit;
}

bool take(std::uint32_t& count, std::uint32_t limit) {
    if (count >= limit) return false;
    ++count;
    return true;
}

}  // namespace

bool Quotas::takeSession(std::string const& identity) {
    return take(used_[identity].sessions, limits_.sessions);
}

bool Quotas::takeMount(std::string const& identity) {
    return take(used_[identity].mounts, limits_.mounts);
}

bool Quotas::moveHalfTexts(std::string const& identity, std::uint64_t from, std::uint64_t to) {
    return move(used_[identity].halfTexts, from, to, limits_.halfTexts);
}

bool Quotas::moveEntities(std::string const& identity, std::uint64_t from, std::uint64_t to) {
    return move(used_[identity].entities, from, to, limits_.entities);
}

void Quotas::giveBack(std::string const& identity, QuotaUse const& use) {
    auto const found = used_.find(identity);
    if (found == used_.end()) return;
    QuotaUse& left = found->second;
    left.sessions = difference(left.sessions, use.sessions);
    left.mounts = difference(left.mounts, use.mounts);
    left.halfTexts = difference(left.halfTexts, use.halfTexts);
    left.entities = difference(left.entities, use.entities);
    if (left.sessions == 0) used_.erase(found);
}

QuotaUse Quotas::useOf(std::string const& identity) const {
    auto const found = used_.find(identity);
    return found == used_.end() ? QuotaUse{} : found->second;
}

}  // namespace Vgwd
