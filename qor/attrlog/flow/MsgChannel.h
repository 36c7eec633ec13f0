// A message channel: a connection that carries the changes of chosen entities only. Its constrainer
// decides which; there is at most one in a thread. An adapter that serves a channel has an entry
// there, and tells it what kind of record was applied.
#ifndef QOR_ATTRLOG_FLOW_MSGCHANNEL_H
#define QOR_ATTRLOG_FLOW_MSGCHANNEL_H

#include <qor/attrlog/EntityId.h>
#include <qor/core/Export.h>
#include <qor/core/VFPtrInterface.h>

namespace Qor {

class Entity;

class QOR_EXPORT MsgChannel {
  public:
    enum class Mode : U8 {
        idle = 0,
        applied = 1,   // a text, a member's text, a reference or a child came
        syncMode = 3,  // a sync mode came
    };

    class QOR_EXPORT Constrainer {
      public:
        class QOR_EXPORT QorEntry : public VFPtrInterface {
          public:
            void modeIs(Mode mode) noexcept { mode_ = mode; }
            Mode mode() const noexcept { return mode_; }

          private:
            Mode mode_ = Mode::idle;
        };

        // The id of the child that is being read, and the entity that it is to stand in.
        EntityId deserializingEid() const noexcept { return deserializingEid_; }
        void deserializingEidIs(EntityId const& id) noexcept { deserializingEid_ = id; }
        Entity* deserializingInParent() const noexcept { return deserializingInParent_; }
        void deserializingInParentIs(Entity* parent) noexcept { deserializingInParent_ = parent; }

      private:
        EntityId deserializingEid_;
        Entity* deserializingInParent_ = nullptr;
    };

    // The thread's constrainer, or null. It belongs to whoever set it.
    static Constrainer* constrainer() noexcept;
    static void constrainerIs(Constrainer* constrainer) noexcept;

    // A scope in which a child is read; without a constrainer it does nothing.
    class QOR_EXPORT DeserializingEidAnchor {
      public:
        DeserializingEidAnchor(EntityId const& id, Entity* parent) noexcept;
        ~DeserializingEidAnchor();
        DeserializingEidAnchor(DeserializingEidAnchor const&) = delete;
        DeserializingEidAnchor& operator=(DeserializingEidAnchor const&) = delete;

      private:
        Constrainer* const constrainer_;
        EntityId oldId_;
        Entity* oldParent_ = nullptr;
    };
};

}  // namespace Qor

#endif
