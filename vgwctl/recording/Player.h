#ifndef VGWCTL_RECORDING_PLAYER_H
#define VGWCTL_RECORDING_PLAYER_H

// Plays a recording into a copy of the tree, as if the agent sent it now.

#include <vgwctl/link/Copy.h>
#include <vgwctl/recording/Recording.h>

#include <qor/attrlog/session/Session.h>

#include <optional>
#include <string>

namespace Vgwctl {

class Player : private Qor::NboAttrLog::SessionListener {
  public:
    Player(Recording& recording, Copy& copy) : recording_(recording), copy_(copy) {}
    ~Player() override;

    /// The time of what is played next; none at the end.
    std::optional<double> next();
    /// Plays it. Raises Failure for what no agent would send.
    void step();
    void playAll();

  private:
    // Gives out what was recorded; what is written goes nowhere.
    class Tape final : public Qor::NboAttrLog::Transport {
      public:
        std::size_t write(std::string_view bytes) override { return bytes.size(); }
        std::size_t read(std::span<unsigned char> room) override;
        Qor::String8 closed() const override { return {}; }

        std::string waiting;
    };

    void onMounted(Qor::NboAttrLog::MountId mount, Qor::Entity::Ptr const& entity) override;
    void begin();

    Recording& recording_;
    Copy& copy_;
    Tape tape_;
    std::optional<Qor::NboAttrLog::Session> session_;
    std::optional<Recording::Chunk> chunk_;
};

}  // namespace Vgwctl

#endif
