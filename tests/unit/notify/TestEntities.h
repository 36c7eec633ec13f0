// A small tree of entity classes for the tests of the framework, written by hand on the templates
// of qor/model: a root class, a class below it that is its own member in a collection, and a
// container. Each counts its living objects. The listeners write what they hear into a log and then
// do what the test asks of them.
#ifndef TESTS_UNIT_NOTIFY_TEST_ENTITIES_H
#define TESTS_UNIT_NOTIFY_TEST_ENTITIES_H

#include <qor/entity/Entity.h>
#include <qor/model/Class.h>

#include <functional>
#include <string>
#include <vector>

namespace Sample {

/// Counts the living objects of a class.
template <class T>
struct Live {
    Live() { ++count; }
    Live(Live const&) = delete;
    Live& operator=(Live const&) = delete;
    ~Live() { --count; }
    static inline int count = 0;
};

class Row : public Qor::Entity, Live<Row> {
  public:
    using Ptr = Qor::Ptr<Row>;
    using NotifierRoot = Row;
    class NotifieeConst;
    struct ModeAttr;
    struct MarkAttr;
    struct LabelAttr;
    using QorAttributes = Qor::AttributeList<ModeAttr, MarkAttr, LabelAttr>;
    using QorMark = Qor::ValueMember<Qor::String8, bool>;

    using Qor::Entity::Entity;
    static int living() { return Live<Row>::count; }

    Qor::U32 mode() const { return mode_; }
    void modeIs(Qor::U32 mode);

    bool mark(Qor::String8 const& key) const;
    void markIs(Qor::String8 const& key, bool value);
    bool markDel(Qor::String8 const& key);
    void markDelAll();
    Qor::U32 marks() const { return mark_.size(); }

    Qor::String8 label(Qor::U16 key) const;
    void labelIs(Qor::U16 key, Qor::String8 const& value);
    Qor::String8 labelDel(Qor::U16 key);
    void labelDelAll();
    Qor::U32 labels() const { return label_.size(); }
    Qor::AttributeIterator<LabelAttr> labelIterator();

    void isNondestructingIs(bool isNondestructing) override {
        Qor::changeNondestructing(*this, isNondestructing);
    }
    void zeroReferencesIs(bool) override {
        Qor::tellZeroReferences(*this);
        if (onEnd) {
            onEnd();
        }
    }
    Qor::String8 attributeString(Qor::AttributeId id) const override;
    bool qorIsCollection(Qor::AttributeId id) const override;
    Qor::ListRaw<NotifieeConst>& notifierList() const noexcept { return notifierList_; }

    std::function<void()> onEnd;  // what the test does while the end is told

  private:
    Qor::U32 mode_ = 0;
    Qor::HashMap<QorMark, Qor::String8> mark_;
    Qor::HashMap<Qor::ValueMember<Qor::U16, Qor::String8>, Qor::U16> label_;
    mutable Qor::ListRaw<NotifieeConst> notifierList_;
};

class Row::NotifieeConst : public Qor::RootNotifiee<Row> {
  public:
    static inline constinit Qor::NotifieeKind const qorKind{Qor::NotifieeKind::Below{},
                                                            Qor::Entity::NotifieeConst::qorKind};
    NotifieeConst() { kindIs(qorKind); }
    virtual void onIsNondestructing() {}
    virtual void onMode() {}
    virtual void onMark(Qor::String8) {}
    virtual void onMark() {}
    virtual void onLabel(Qor::U16) {}
    virtual void onLabel() {}
};

struct Row::ModeAttr : Qor::ScalarAttribute<Row, 258, Qor::U32> {
    static constexpr char const* name = "mode";
    static auto& field(auto& entity) { return entity.mode_; }
    static void tell(NotifieeConst& notifiee) { notifiee.onMode(); }
};

struct Row::MarkAttr : Qor::ValueMapAttribute<Row, 259, Qor::String8, bool> {
    static constexpr char const* name = "mark";
    static auto& map(auto& entity) { return entity.mark_; }
    static void tell(NotifieeConst& notifiee, Key const& key) { notifiee.onMark(key); }
    static void notify(Entity& entity, Key const& key, Qor::Ptr<Member> const&) {
        Qor::tellKeyed<MarkAttr>(entity, key);
    }
};

struct Row::LabelAttr : Qor::ValueMapAttribute<Row, 260, Qor::U16, Qor::String8> {
    static constexpr char const* name = "label";
    static auto& map(auto& entity) { return entity.label_; }
    static void tell(NotifieeConst& notifiee, Key const& key) { notifiee.onLabel(key); }
    static void notify(Entity& entity, Key const& key, Qor::Ptr<Member> const&) {
        Qor::tellKeyed<LabelAttr>(entity, key);
    }
};

inline bool Row::qorIsCollection(Qor::AttributeId id) const { return QorAttributes::isKeyed(id); }
inline void Row::modeIs(Qor::U32 mode) { Qor::setScalar<ModeAttr>(*this, mode); }
inline bool Row::mark(Qor::String8 const& key) const {
    return Qor::keyedValue<MarkAttr>(*this, key);
}
inline void Row::markIs(Qor::String8 const& key, bool value) {
    Qor::setKeyed<MarkAttr>(*this, key, value);
}
inline bool Row::markDel(Qor::String8 const& key) { return Qor::delKeyed<MarkAttr>(*this, key); }
inline void Row::markDelAll() { Qor::delAll<MarkAttr>(*this); }
inline Qor::String8 Row::label(Qor::U16 key) const {
    return Qor::keyedValue<LabelAttr>(*this, key);
}
inline void Row::labelIs(Qor::U16 key, Qor::String8 const& value) {
    Qor::setKeyed<LabelAttr>(*this, key, value);
}
inline Qor::String8 Row::labelDel(Qor::U16 key) { return Qor::delKeyed<LabelAttr>(*this, key); }
inline void Row::labelDelAll() { Qor::delAll<LabelAttr>(*this); }
inline Qor::AttributeIterator<Row::LabelAttr> Row::labelIterator() {
    return Qor::AttributeIterator<LabelAttr>(*this);
}
inline Qor::String8 Row::attributeString(Qor::AttributeId id) const {
    char const* const name = QorAttributes::nameOf(id);
    return name ? Qor::String8(name) : Qor::Entity::attributeString(id);
}

class Port : public Qor::NameKeyed<Port, Row> {
  public:
    using Ptr = Qor::Ptr<Port>;
    class NotifieeConst;
    struct SpeedAttr;
    using QorAttributes = Qor::AttributeList<SpeedAttr>;

    using NameKeyed::NameKeyed;
    Qor::U32 speed() const { return speed_; }
    void speedIs(Qor::U32 speed);
    Qor::String8 attributeString(Qor::AttributeId id) const override;

    std::vector<Qor::Entity*> parents;  // each parent that was set, in turn

  protected:
    void handleParent(Qor::Ptr<Qor::Entity> const& parent) override {
        parents.push_back(parent.ptr());
    }

  private:
    Qor::U32 speed_ = 0;
};

class Port::NotifieeConst : public Row::NotifieeConst {
  public:
    static inline constinit Qor::NotifieeKind const qorKind{Qor::NotifieeKind::Below{},
                                                            Row::NotifieeConst::qorKind};
    NotifieeConst() { kindIs(qorKind); }
    virtual void onSpeed() {}
};

struct Port::SpeedAttr : Qor::ScalarAttribute<Port, 386, Qor::U32> {
    static constexpr char const* name = "speed";
    static auto& field(auto& entity) { return entity.speed_; }
    static void tell(NotifieeConst& notifiee) { notifiee.onSpeed(); }
};

inline void Port::speedIs(Qor::U32 speed) { Qor::setScalar<SpeedAttr>(*this, speed); }
inline Qor::String8 Port::attributeString(Qor::AttributeId id) const {
    char const* const name = QorAttributes::nameOf(id);
    return name ? Qor::String8(name) : Row::attributeString(id);
}

class Device : public Qor::Entity, Live<Device> {
  public:
    using Ptr = Qor::Ptr<Device>;
    using NotifierRoot = Device;
    class NotifieeConst;
    struct PortAttr;
    struct UplinkAttr;
    struct MainAttr;
    using QorAttributes = Qor::AttributeList<PortAttr, UplinkAttr, MainAttr>;
    using QorUplink = Qor::RefMember<Qor::String8, Port>;

    using Qor::Entity::Entity;
    ~Device() override { Qor::dropOwned<QorAttributes>(*this); }
    static int living() { return Live<Device>::count; }

    Port::Ptr port(Qor::Name const& name) const;
    Port::Ptr portIs(Qor::Name const& name);
    Port::Ptr newPort(Qor::Name const& name);
    Port::Ptr portDel(Qor::Name const& name);
    void portDelAll();
    Qor::U32 ports() const { return port_.size(); }
    Qor::AttributeIterator<PortAttr> portIterator();

    Port::Ptr uplink(Qor::String8 const& key) const;
    Qor::Ptr<QorUplink> qorUplink(Qor::String8 const& key) const;
    void uplinkIs(Qor::String8 const& key, Port::Ptr const& port);
    Port::Ptr uplinkDel(Qor::String8 const& key);
    void uplinkDelAll();
    Qor::U32 uplinks() const { return uplink_.size(); }

    Port::Ptr main() const { return main_; }
    Port::Ptr mainIs(Qor::Name const& name);
    Port::Ptr mainDel();

    void isNondestructingIs(bool isNondestructing) override {
        Qor::changeNondestructing(*this, isNondestructing);
    }
    void zeroReferencesIs(bool) override { Qor::tellZeroReferences(*this); }
    Qor::String8 attributeString(Qor::AttributeId id) const override;
    bool qorIsCollection(Qor::AttributeId id) const override;
    Qor::ListRaw<NotifieeConst>& notifierList() const noexcept { return notifierList_; }

  private:
    Qor::HashMap<Port, Qor::Name> port_;
    Qor::HashMap<QorUplink, Qor::String8> uplink_;
    Port::Ptr main_;
    mutable Qor::ListRaw<NotifieeConst> notifierList_;
};

class Device::NotifieeConst : public Qor::RootNotifiee<Device> {
  public:
    static inline constinit Qor::NotifieeKind const qorKind{Qor::NotifieeKind::Below{},
                                                            Qor::Entity::NotifieeConst::qorKind};
    NotifieeConst() { kindIs(qorKind); }
    virtual void onIsNondestructing() {}
    virtual void onPort(Qor::Name) {}
    virtual void onUplink(Qor::String8) {}
    virtual void onMain() {}
};

struct Device::PortAttr : Qor::ChildMapAttribute<Device, 258, Port> {
    static constexpr char const* name = "port";
    static auto& map(auto& entity) { return entity.port_; }
    static void tell(NotifieeConst& notifiee, Key const& key) { notifiee.onPort(key); }
    static void notify(Entity& entity, Key const& key, Qor::Ptr<Member> const& member) {
        Qor::notifyOwned<PortAttr>(entity, key, member);
    }
};

struct Device::UplinkAttr : Qor::RefMapAttribute<Device, 259, Qor::String8, Port> {
    static constexpr char const* name = "uplink";
    static auto& map(auto& entity) { return entity.uplink_; }
    static void tell(NotifieeConst& notifiee, Key const& key) { notifiee.onUplink(key); }
    static void notify(Entity& entity, Key const& key, Qor::Ptr<Member> const&) {
        Qor::tellKeyed<UplinkAttr>(entity, key);
    }
};

struct Device::MainAttr : Qor::ChildAttribute<Device, 260, Port> {
    static constexpr char const* name = "main";
    static auto& field(auto& entity) { return entity.main_; }
    static void tell(NotifieeConst& notifiee) { notifiee.onMain(); }
};

inline bool Device::qorIsCollection(Qor::AttributeId id) const {
    return QorAttributes::isKeyed(id);
}
inline Port::Ptr Device::port(Qor::Name const& name) const {
    return Qor::ownedEntity<PortAttr>(*this, name);
}
inline Port::Ptr Device::portIs(Qor::Name const& name) {
    return Qor::setOwned<PortAttr>(*this, name);
}
inline Port::Ptr Device::newPort(Qor::Name const& name) {
    return Qor::newOwned<PortAttr>(*this, name);
}
inline Port::Ptr Device::portDel(Qor::Name const& name) {
    return Qor::delOwned<PortAttr>(*this, name);
}
inline void Device::portDelAll() { Qor::delAll<PortAttr>(*this); }
inline Qor::AttributeIterator<Device::PortAttr> Device::portIterator() {
    return Qor::AttributeIterator<PortAttr>(*this);
}
inline Port::Ptr Device::uplink(Qor::String8 const& key) const {
    return Qor::keyedValue<UplinkAttr>(*this, key);
}
inline Qor::Ptr<Device::QorUplink> Device::qorUplink(Qor::String8 const& key) const {
    return Qor::referenceMember<UplinkAttr>(*this, key);
}
inline void Device::uplinkIs(Qor::String8 const& key, Port::Ptr const& port) {
    Qor::setReference<UplinkAttr>(*this, key, port);
}
inline Port::Ptr Device::uplinkDel(Qor::String8 const& key) {
    return Qor::delKeyed<UplinkAttr>(*this, key);
}
inline void Device::uplinkDelAll() { Qor::delAll<UplinkAttr>(*this); }
inline Port::Ptr Device::mainIs(Qor::Name const& name) {
    return Qor::setChild<MainAttr>(*this, name);
}
inline Port::Ptr Device::mainDel() { return Qor::delChild<MainAttr>(*this); }
inline Qor::String8 Device::attributeString(Qor::AttributeId id) const {
    char const* const name = QorAttributes::nameOf(id);
    return name ? Qor::String8(name) : Qor::Entity::attributeString(id);
}

}  // namespace Sample

#endif
