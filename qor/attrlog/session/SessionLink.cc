// What the two ends of a session tell each other of the connection itself. The payload of each
// frame is the kind of message in one byte, and its fields.
#include <qor/attrlog/session/Session.h>
#include <qor/core/Format.h>
#include <qor/core/Now.h>
#include <qor/registry/QorType.h>
#include <qor/tree/EntityPath.h>

#include <algorithm>
#include <new>
#include <utility>

namespace Qor {

namespace NboAttrLog {

namespace {

constexpr std::size_t greatestDepth = 64;

}  // namespace

bool Session::isAnsweredAtOnce(Op op) {
    return op == Op::mount || op == Op::call || op == Op::ping;
}

// What is answered at once waits for room, and all that comes behind it. Records do not: they lead
// to no more than marks. Nor does the connecting end wait: of two that wait for each other one has
// to read on. It answers as much as a ring holds beyond its own, and ends by name.
bool Session::mayTake(In& in) {
    if (demuxer_->out()->freeBytes() >= Out::blockSize) {
        answered_ = 0;
        return true;
    }
    auto const op = in.available() != 0 ? static_cast<Op>(in.byteAt(in.readPosition())) : Op::error;
    if (!isAnsweredAtOnce(op) && op != Op::digest) return true;
    if (config_.side == Demuxer::Side::accepting) return false;
    if (answered_ > U64{config_.ringBlocks} * Out::blockSize) {
        throw AttrLogRecordException("the peer asks for more than it takes");
    }
    return true;
}

void Session::handleLink(Frame const&, In& in) {
    auto const op = static_cast<Op>(in.nextU8());
    if (!hasHello_ && op != Op::hello && op != Op::error) {
        throw AttrLogRecordException("the peer does not begin with a hello");
    }
    Alive const alive(*this);
    U64 const before = demuxer_->out()->written();
    handleOp(op, in);
    if (alive && isAnsweredAtOnce(op))
        answered_ += std::max(demuxer_->out()->written(), before) - before;
}

void Session::handleOp(Op op, In& in) {
    switch (op) {
        case Op::hello:
            return handleHello(in);
        case Op::mount:
            return handleMount(in);
        case Op::mounted:
            return handleMounted(in);
        case Op::unmount:
            return handleUnmount(in);
        case Op::call:
            return handleCall(in);
        case Op::returned:
            return handleReturned(in);
        case Op::digest:
            return handleDigest(in);
        case Op::digested:
            return handleDigested(in);
        case Op::synced:
        case Op::refused:
        case Op::error:
        case Op::ping:
        case Op::pong:
            return handleAnswer(op, in);
        case Op::describe:
            return handleDescribe(in);
        case Op::described:
            return handleDescribed(in);
        case Op::describedAll:
            return handleDescribedAll(in);
    }
    throw AttrLogRecordException(
        format("a link message of the unknown kind %u", static_cast<U32>(op)));
}

void Session::handleHello(In& in) {
    if (hasHello_) throw AttrLogRecordException("a second hello");
    if (in.nextU32() != magic) throw AttrLogRecordException("the peer speaks something else");
    U32 const spoken = in.nextU32();
    if (spoken != protocol) {
        throw AttrLogRecordException(
            format("the peer speaks protocol %u, expected %u", spoken, protocol));
    }
    U32 const greatest = in.nextU32();
    if (greatest < leastGreatestFrame) {
        throw AttrLogRecordException(format("the peer takes frames of %u bytes only", greatest));
    }
    demuxer_->out()->greatestFrameIs(greatest);
    hasHello_ = true;
}

AdapterState::Bits Session::flagsForPeer(bool writable) const {
    return AdapterState::Bits(AdapterState::weakNotifier |
                              (writable ? 0 : AdapterState::readOnlyRemote));
}

Ptr<Entity> Session::entityAt(String8 const& path) const {
    auto const elements = pathElements(path);
    if (!root_ || elements.size() > greatestDepth || elements.front() != root_->name()) {
        return nullptr;
    }
    Ptr<Entity> at = root_;
    for (std::size_t next = 1; at && next < elements.size();) {
        std::size_t used = 0;
        at = at->qorPathStep(elements.data() + next, elements.size() - next, &used);
        next += used;
    }
    return at;
}

void Session::refuse(MountId mount, String8 const& reason) {
    send(Op::refused, mount, toldText(reason));
}

void Session::handleMount(In& in) {
    MountId const mount = in.nextU32();
    bool const writable = in.nextbool();
    String8 const path = in.nextString();
    if (given_.contains(mount) || held_.contains(mount)) {
        throw AttrLogRecordException("a mount of a number in use");
    }
    if (given_.size() + held_.size() >= config_.mounts) return refuse(mount, "too many mounts");
    if (writable && !config_.peerMayWrite) return refuse(mount, path + " may only be read");
    giveAsked(mount, {path, writable}, true);
}

// What stands below another that is on its way may be held back until that has been announced.
void Session::giveAsked(MountId mount, Held const& asked, bool mayHoldBack) {
    Ptr<Entity> entity;
    String8 why;
    Alive const alive(*this);
    try {
        entity = entityAt(asked.path);
        if (entity && mayHoldBack && isOnItsWay(*entity)) {
            held_[mount] = asked;
            return;
        }
        why = whyNotGiven(asked, entity);
    } catch (std::bad_alloc const&) {
        throw;  // no answer to what was asked; the session ends
    } catch (std::exception const& failure) {
        why = failure.what();
    }
    if (!alive) return;
    if (!why.empty()) return refuse(mount, why);
    give(mount, *entity, asked.writable);
    if (listener_ != nullptr) listener_->onGiven(mount, asked.path, asked.writable);
}

String8 Session::whyNotGiven(Held const& asked, Ptr<Entity> const& entity) {
    if (!entity) return asked.path + " does not exist";
    if (!entity->qorHasAttrLogInterface()) return asked.path + " can't be mounted";
    String8 why = whyNotAbove(*entity);
    if (!why.empty() || listener_ == nullptr) return why;
    return listener_->onAsked(asked.path, asked.writable, *entity);
}

// An entity has one id on a connection, and one copy. What stands below a mounted one is announced
// in its place there; until then it can't be given by itself.
bool Session::isOnItsWay(Entity const& entity) const {
    Ptr<Out const> const out(demuxer_->out());
    if (entity.qorNboAttrLogSa(out) != nullptr || !demuxer_->owes()) return false;
    for (Entity const* above = entity.qorParent(); above; above = above->qorParent()) {
        if (above->qorNboAttrLogSa(out) != nullptr) return true;
    }
    return false;
}

// A copy that stands by itself at the peer can't become a part of another.
String8 Session::whyNotAbove(Entity const& entity) const {
    if (entity.qorNboAttrLogSa(Ptr<Out const>(demuxer_->out())) != nullptr) return {};
    for (auto const& [number, given] : given_) {
        auto const* const adapter = demuxer_->adapter(given.id);
        Entity const* const below = adapter ? adapter->qorNotifierEntity() : nullptr;
        for (Entity const* at = below; at; at = at->qorParent()) {
            if (at->qorParent() != &entity) continue;
            String8 const path = entity.uriPath();
            return path + " holds " + below->uriPath() +
                   ", which is mounted on this connection already: mount " + path +
                   " first, or on a connection of its own";
        }
    }
    return {};
}

void Session::giveHeld() {
    Alive const alive(*this);
    while (alive && !held_.empty() && demuxer_->out()->freeBytes() >= Out::blockSize) {
        auto const next = held_.extract(held_.begin());
        giveAsked(next.key(), next.mapped(), false);
    }
}

void Session::give(MountId mount, Entity& entity, bool writable) {
    auto* const known = entity.qorNboAttrLogSa(Ptr<Out const>(demuxer_->out()));
    Ptr<Entity::QorNboAttrLogSa> const adapter(
        known ? Ptr<Entity::QorNboAttrLogSa>(known)
              : entity.qorNboAttrLogSaIs(flagsForPeer(writable), 1, demuxer_->out(), nullptr));
    if (!known) adapter->qorOnInit();
    if (known && writable) adapter->flagIs(AdapterState::readOnlyRemote, false);
    given_[mount] = {adapter->entityId(), false};
    send(Op::mounted, mount, adapter->entityId());
    adapter->doSerializeOrphan();
}

void Session::handleMounted(In& in) {
    U32 const number = in.nextU32();
    EntityId const id = in.nextEntityId();
    auto const found = askedUnder(number);
    if (found != asked_.end()) found->second.id = id;
}

void Session::handleUnmount(In& in) {
    MountId const mount = in.nextU32();
    if (held_.erase(mount) != 0) return;
    auto const found = given_.find(mount);
    if (found == given_.end()) return;
    EntityId const id = found->second.id;
    given_.erase(found);
    Alive const alive(*this);
    if (listener_ != nullptr) listener_->onTakenBack(mount);
    if (!alive) return;
    bool const isShared = std::any_of(given_.begin(), given_.end(),
                                      [&](auto const& one) { return one.second.id == id; });
    if (isShared) return;
    letGo(id);
}

// What stands below another mounted entity stays.
void Session::letGo(EntityId const& id) {
    Demuxer::Ptr const held(demuxer_);
    demuxer_->forgetTheGone();
    auto* const adapter = demuxer_->adapter(id);
    if (!adapter) return;
    Entity* const parent = adapter->qorNotifierEntity()->qorParent();
    bool const isBelow = parent && parent->qorNboAttrLogSa(Ptr<Out const>(demuxer_->out()));
    if (!isBelow) demuxer_->reactorDel(id);
}

// An announcement may cross an unmount: then nobody asks for it any more.
LinkHandler::Orphan Session::orphan(EntityId const& id, String8 const& typeName, Name const& name) {
    auto const isOf = [&](auto const& one) { return one.second.id == id; };
    auto found = std::find_if(asked_.begin(), asked_.end(), isOf);
    // Of several mounts of one entity each is told.
    auto const isNews = [&](auto const& one) { return isOf(one) && !one.second.isTold; };
    auto const news = std::find_if(found, asked_.end(), isNews);
    if (news != asked_.end()) found = news;
    if (found == asked_.end()) return {};
    Asked& asked = found->second;
    Ptr<Entity> const before = asked.copy;
    if (auto* const known = demuxer_->adapter(id)) asked.copy = known->qorNotifierEntity();
    String8 const fault = findCopy(asked, typeName, name);
    if (fault.length() != 0) {
        if (!holdBackForType(id, Name(typeName))) refuseHere(id, fault);
        return {};
    }
    return mountedHere(found->first, id);
}

// Tells the listener, who may give the mount back, or end the session: then nobody asks any more.
LinkHandler::Orphan Session::mountedHere(MountId mount, EntityId const& id) {
    Asked& asked = asked_.at(mount);
    Orphan const here{asked.copy,
                      AdapterState::Bits(AdapterState::weakNotifier |
                                         (asked.writable ? 0 : AdapterState::readOnlyLocal))};
    bool const isFirst = !std::exchange(asked.isTold, true);
    Alive const alive(*this);
    if (isFirst && listener_ != nullptr) listener_->onMounted(mount, here.entity);
    if (!alive) return {};
    auto const left = asked_.find(mount);
    bool const isAskedFor = left != asked_.end() && left->second.id == id;
    return isAskedFor ? here : Orphan();
}

// Makes the copy unless it is there. What is wrong, empty if nothing is.
String8 Session::findCopy(Asked& asked, String8 const& typeName, Name const& name) {
    if (asked.copy) {
        QorType const* const type = asked.copy->fwkType();
        if (type == nullptr || type->fullName() == typeName) return {};
        return String8("the copy is a ") + type->fullName() + ", the peer's entity a " + typeName;
    }
    QorType* const type = QorType::type(Name(typeName));
    if (type == nullptr || !type->isEntity()) {
        return String8("the class ") + typeName + " is not known here";
    }
    try {
        asked.copy = type->newEntity(name, nullptr);
    } catch (Exception const& failure) {
        return failure.message();
    }
    return {};
}

// What the peer gives can't be held here: its mounts are taken back, and the session goes on.
void Session::refuseHere(EntityId const& id, String8 const& reason) {
    std::vector<MountId> mounts;
    for (auto const& [mount, asked] : asked_) {
        if (asked.id == id) mounts.push_back(mount);
    }
    Alive const alive(*this);
    for (MountId const mount : mounts) {
        auto gone = asked_.extract(mount);
        if (gone.empty()) continue;
        giveBack(gone.mapped());
        if (listener_ != nullptr) listener_->onRefused(mount, reason);
        if (!alive) return;
    }
}

void Session::handleAnswer(Op op, In& in) {
    if (op == Op::error) {
        reason_ = toldText(String8("the peer: ") + in.nextString());
        return demuxer_->fail(reason_);
    }
    if (op == Op::ping) {
        ++pingsIn_;
        return send(Op::pong, in.nextSeconds());
    }
    if (op == Op::pong) {
        Seconds const roundTrip = now() - in.nextSeconds();
        if (listener_ != nullptr) listener_->onPong(roundTrip);
        return;
    }
    auto const found = askedUnder(in.nextU32());
    if (found == asked_.end()) return;
    MountId const mount = found->first;
    if (op == Op::synced) {
        bool const isMounted = found->second.isTold && !found->second.id.isNull();
        if (isMounted && listener_ != nullptr) listener_->onSynced(mount);
        return;
    }
    String8 const reason = in.nextString();
    numbers_.erase(found->second.number);
    auto const gone = asked_.extract(found);
    if (listener_ != nullptr) listener_->onRefused(mount, reason);
}

}  // namespace NboAttrLog

}  // namespace Qor
