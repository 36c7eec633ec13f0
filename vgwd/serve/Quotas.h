#ifndef VGWD_SERVE_QUOTAS_H
#define VGWD_SERVE_QUOTAS_H

// What one identity may take of the agent, whatever the number of its connections. Counts saturate:
// none wraps, whatever is added or taken.

#include <cstdint>
#include <map>
#include <string>

namespace Vgwd {

/// At most one identity's.
struct QuotaLimits {
    std::uint32_t sessions = 256;
    std::uint32_t mounts = 1024;
    std::uint64_t halfTexts = 64U << 20;  ///< bytes of texts that have not come whole
    /// That it has made in the tree, until they have gone from it: a few hundred bytes each, and up
    /// to nine times what their announcements took. A MAC row is the database's as soon as that has
    /// it.
    std::uint64_t entities = 1U << 18;
};

/// What an identity has.
struct QuotaUse {
    std::uint32_t sessions = 0;
    std::uint32_t mounts = 0;
    std::uint64_t halfTexts = 0;
    std::uint64_t entities = 0;
};

class Quotas {
  public:
    explicit Quotas(QuotaLimits const& limits) : limits_(limits) {}

    /// Takes so much more, or nothing: then false.
    bool takeSession(std::string const& identity);
    bool takeMount(std::string const& identity);
    /// From so many of one session to so many. Whether that is within the limit; it is
    /// counted in any case, since the bytes are there.
    bool moveHalfTexts(std::string const& identity, std::uint64_t from, std::uint64_t to);
    bool moveEntities(std::string const& identity, std::uint64_t from, std::uint64_t to);
    /// Gives a session back, with its mounts and bytes.
    void giveBack(std::string const& identity, QuotaUse const& use);

    QuotaUse useOf(std::string const& identity) const;
    QuotaLimits const& limits() const { return limits_; }

  private:
    QuotaLimits const limits_;
    std::map<std::string, QuotaUse> used_;
};

}  // namespace Vgwd

#endif
