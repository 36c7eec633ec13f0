// How types travel: each end describes to the other what its registry knows.
#include <qor/attrlog/session/Session.h>
#include <qor/core/Format.h>
#include <qor/dynamic/DescriptionCheck.h>

namespace Qor {

namespace NboAttrLog {

namespace {

bool isKnownClass(Name const& fullName) {
    QorType const* const type = QorType::type(fullName);
    return type && type->isEntity();
}

}  // namespace

void Session::askForTypes(Name const& fullName) {
    send(Op::describe, ++typesAsked_, String8(fullName));
}

void Session::handleDescribe(In& in) {
    U32 const number = in.nextU32();
    Name const name(in.nextString());
    if (answers_.size() >= greatestAnswers) {
        throw AttrLogRecordException(
            format("more than %zu descriptions asked for at a time", greatestAnswers));
    }
    answers_.push_back({number, typesNeededFor(name)});
}

// As there is room: what the peer does not read costs no more than its ring.
void Session::describeTypes() {
    auto const& out = demuxer_->out();
    try {
        while (!answers_.empty() && !demuxer_->hasFailed() && out->freeBytes() >= Out::blockSize) {
            Answer& answer = answers_.front();
            if (answer.next == answer.types.size()) {
                send(Op::describedAll, answer.number, static_cast<U32>(answer.types.size()));
                answers_.pop_front();
                continue;
            }
            QorType& type = *answer.types[answer.next++];
            out->beginFrame(FrameKind::link, {});
            out << Out::TransactToken::begin << static_cast<U8>(Op::described) << answer.number;
            TypeDescription::of(type).put(out);
            out << Out::TransactToken::end;
        }
    } catch (std::exception const& failure) {
        demuxer_->fail(failure.what());
    }
}

void Session::handleDescribed(In& in) {
    bool const isAsked = awaitsTypes() && in.nextU32() == typesAnswered_ + 1;
    if (!isAsked) throw AttrLogRecordException("a description that nobody asked for");
    types_.take(in);
}

void Session::handleDescribedAll(In& in) {
    bool const isAsked = awaitsTypes() && in.nextU32() == typesAnswered_ + 1;
    bool const isWhole = isAsked && in.nextU32() == types_.size();
    if (!isWhole) throw AttrLogRecordException("an end of descriptions that are not all there");
    types_.complete();
    ++typesAnswered_;
    askOn();
    if (awaitsTypes()) return;
    Alive const alive(*this);
    mountWhatWasLacked();
    if (!alive) return;
    askForAll();
}

// Once for each name: what the peer can't describe is skipped from then on.
void Session::unknownClass(Name const& fullName) {
    if (!isTypeName(fullName)) return;
    if (lacked_.size() < greatestNamesLacked) lacked_.insert(fullName);
    bool const isToAsk = config_.takesTypes && namesAsked_.size() < greatestNamesAsked &&
                         namesAsked_.insert(fullName).second;
    if (!isToAsk) return;
    namesToAsk_.push_back(fullName);
    askOn();
}

// No more at a time than a peer takes. What an answer has brought along is not asked for.
void Session::askOn() {
    while (!namesToAsk_.empty() && typesAsked_ - typesAnswered_ < greatestAnswers) {
        Name const name = namesToAsk_.front();
        namesToAsk_.pop_front();
        if (!isKnownClass(name)) askForTypes(name);
    }
}

// Whether a type was published since the classes that are lacked were looked for.
bool Session::mayLackLess() const noexcept {
    return !lacked_.empty() && publications_ != QorType::publications() && !awaitsTypes();
}

// A class may also have become known over another connection. What was written to a copy goes
// first: the peer's word is the last where a copy is mounted.
void Session::mountWhatWasLacked() {
    if (!mayLackLess() || demuxer_->owes()) return;
    publications_ = QorType::publications();
    if (std::erase_if(lacked_, isKnownClass) != 0) mountAllAgain();
}

// Whether the class that stands in the way is asked for, so that the mounts wait for the answer.
bool Session::holdBackForType(EntityId const& id, Name const& fullName) {
    if (QorType::type(fullName)) return false;
    demuxer_->leftOutInc();
    unknownClass(fullName);
    if (!awaitsTypes()) return false;
    for (auto& [mount, asked] : asked_) {
        if (asked.id == id) giveBack(asked);
    }
    return true;
}

// The copies stay, and are told real differences only.
void Session::mountAllAgain() {
    std::vector<MountId> mounts;
    for (auto const& [mount, asked] : asked_) {
        if (asked.number != 0) mounts.push_back(mount);
    }
    Alive const alive(*this);
    for (MountId const mount : mounts) {
        auto const one = asked_.find(mount);
        if (one == asked_.end()) continue;
        letGo(giveBack(one->second));
        if (!alive) return;
    }
    // Behind all that are given back: one that stands below another is no longer in its way.
    askForAll();
}

}  // namespace NboAttrLog

}  // namespace Qor
