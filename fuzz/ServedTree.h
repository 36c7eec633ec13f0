// A small tree as an agent serves it, a session over it, and what must hold of a tree after
// whatever a peer did.
#ifndef FUZZ_SERVED_TREE_H
#define FUZZ_SERVED_TREE_H

#include <qor/attrlog/session/Session.h>
#include <qor/tree/Dir.h>
#include <vgw/agent/CliConfig.h>
#include <vgw/agent/Status.h>

#include <memory>
#include <string>

struct ServedTree {
    ServedTree();
    // One of a few changes that an agent makes.
    void change(std::uint8_t which);
    // Ends the run where a child has another parent than its owner, or a map another count.
    void mustBeConsistent() const;
    // All that it holds, as text.
    std::string text() const;

    Qor::Ptr<Qor::Dir> root = Qor::make<Qor::Dir>(Qor::Name("vgw"));
    Qor::Ptr<Qor::Dir> macs = Qor::make<Qor::Dir>(Qor::Name("macs"));
    Vgw::Status::Ptr status = Vgw::statusFactory(Qor::Name("status"));
    Vgw::CliConfig::Ptr cli = Vgw::cliConfigFactory(Qor::Name("cli"));
};

// All that a Status holds below it, as text.
std::string textOf(Vgw::Status const& status);

// Lets those operations be called that require nothing beyond their arguments' types.
struct FuzzDoor : Qor::NboAttrLog::SessionListener {
    Qor::String8 onAskedToCall(Qor::String8 const& path, Qor::String8 const& operation,
                               Qor::Entity& entity) override;
};

// The agent's end of a connection whose other end is bytes.
class ServedSession {
  public:
    ServedSession(Qor::Ptr<Qor::Dir> const& root, bool peerMayWrite, bool takesTypes = false);

    // Hands the bytes over, as many as are taken, and lets the session work.
    void receive(std::string_view bytes);
    void serve();
    // Mounts something of the peer's.
    void mount(Qor::Ptr<Qor::Entity> const& copy) { session_->mount("/peer", true, copy); }
    Qor::NboAttrLog::Session& session() { return *session_; }

  private:
    Qor::NboAttrLog::MemoryTransport peer_;
    Qor::NboAttrLog::MemoryTransport own_;
    FuzzDoor door_;
    std::unique_ptr<Qor::NboAttrLog::Session> session_;
};

#endif
