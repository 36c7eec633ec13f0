// A connection between two processes, its two sessions, and what is mounted over it.
#ifndef TESTS_SIMULATION_LINK_H
#define TESTS_SIMULATION_LINK_H

#include "Dice.h"
#include "Tap.h"
#include "Tree.h"

#include <qor/attrlog/session/Session.h>

#include <memory>
#include <string>
#include <vector>

namespace Sim {

using Qor::NboAttrLog::Session;

class Link final {
  public:
    Link(unsigned accepting, unsigned connecting)
        : accepting_(accepting), connecting_(connecting) {}

    unsigned accepting() const { return accepting_; }
    unsigned connecting() const { return connecting_; }
    bool isUp() const { return accept_ != nullptr; }
    void connect(std::vector<Qor::Dir::Ptr> const& roots, std::vector<Tree> const& trees,
                 Settings const& settings);
    void cut();
    // One of its mounts is given back, and perhaps made again at once; or, if it was given back
    // before, it is made again now. Whether it has any.
    bool remount(Dice& dice);
    void mountAll();
    void roomIs(bool towardsAccepting, std::size_t bytes);
    void service(bool accepting, Qor::U64 budget);
    // Bytes that have gone over it, both ways.
    Qor::U64 bytes() const { return bytes_; }
    bool isSynced() const;
    // Whether an end has learned of a class since the last call, and mounts again what it mounts.
    bool mountsAgain();
    // Nothing is owed or under way.
    bool isIdle() const;
    std::string closed() const;
    // What must hold when nothing is under way.
    std::string audit() const;
    std::vector<Sent> const& history() const { return history_; }
    // What went over it since the last call, in words.
    std::vector<std::string> traceOn();

  private:
    // A tree that one end mounts of the other, and whether it has all of it.
    struct Mounted {
        Session* session;
        Qor::String8 path;
        Qor::Dir::Ptr copy;
        Qor::NboAttrLog::MountId id = 0;  // 0: given back
        bool isSynced = false;
        bool isThere = false;  // and the session has not given it back
    };
    // Hears of one end's mounts.
    class Hearer final : public Qor::NboAttrLog::SessionListener {
      public:
        Hearer(Link& link, Session& session) : link_(link), session_(session) {
            session.listenerIs(this);
        }
        void onSynced(Qor::NboAttrLog::MountId mount) override { link_.synced(session_, mount); }

      private:
        Link& link_;
        Session& session_;
    };

    void mount(Mounted& mounted) const;
    void synced(Session const& session, Qor::NboAttrLog::MountId mount);

    unsigned const accepting_;
    unsigned const connecting_;
    std::vector<Sent> history_;
    std::unique_ptr<Tap> acceptEnd_;
    std::unique_ptr<Tap> connectEnd_;
    std::unique_ptr<Session> accept_;
    std::unique_ptr<Session> connect_;
    std::unique_ptr<Hearer> acceptHearer_;
    std::unique_ptr<Hearer> connectHearer_;
    std::vector<Mounted> mounts_;
    bool areWritable_ = false;
    Qor::U64 bytes_ = 0;
    std::size_t traced_ = 0;
};

}  // namespace Sim

#endif
