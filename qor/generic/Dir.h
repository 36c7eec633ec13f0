// The wrapper of directories, by which a tool walks a tree.
#ifndef QOR_GENERIC_DIR_H
#define QOR_GENERIC_DIR_H

#include <qor/generic/ClassTypes.h>
#include <qor/generic/EntityWrapper.h>
#include <qor/tree/Dir.h>

namespace Qor {

template <class N, class W>
class Dir::QorForward : public ForwardingNotifiee<N, W> {
  public:
    using ForwardingNotifiee<N, W>::ForwardingNotifiee;

    void onIsNondestructing() override { this->template forward<NondestructingTold>(); }
    void onEntry(Name name) override { this->template forward<EntryAttr>(name); }
    void onEntry() override { this->template forwardWhole<EntryAttr>(); }
    auto& qorEntryPending() { return this->entryPending_; }
};

class QOR_EXPORT Dir::GenericIf_ : public EntityWrapper<Dir, GenericIfEntity> {
  public:
    class GenericIf_Adapter_;

    GenericIf_(Qor::Ptr<Entity> const& entity, bool isConst);
    ~GenericIf_() override;

    virtual void onIsNondestructing();
    virtual void onEntry(Name key);
    virtual void onEntryqorImmediate();
    virtual void onEntry();
};

class Dir::GenericIf_::GenericIf_Adapter_ final
    : public Dir::QorForward<Dir::Notifiee, Dir::GenericIf_> {
  public:
    using QorForward::QorForward;
};

class QOR_EXPORT Dir::_Type : public EntityType<Dir, Name> {
  public:
    using EntityType::EntityType;
    using EntityType::newEntity;
    Qor::Ptr<Entity> newEntity(Name const& name, Dir* directory) override;
};

}  // namespace Qor

#endif
