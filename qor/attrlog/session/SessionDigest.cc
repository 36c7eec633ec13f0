// How one end finds out whether its copy is what the other end holds, while both go on: it asks for
// the digest of a page, and is answered once nothing that was changed before is still owed. So the
// answer stands in the stream where the copy should have that digest.
#include <qor/attrlog/FrameTooLong.h>
#include <qor/attrlog/session/Session.h>

namespace Qor {

namespace NboAttrLog {

namespace {

constexpr U32 mostRows = 4096;
constexpr std::size_t mostPending = 64;
constexpr std::size_t mostBytesPending = std::size_t{128} << 10;  // of their paths and keys

}  // namespace

void Session::askForDigest(DigestPage const& page) {
    send(Op::digest, page.path, static_cast<U32>(page.attribute), page.from, page.most);
    digestsAsked_.push_back(page);
}

void Session::handleDigest(In& in) {
    DigestPage page;
    page.path = in.nextString();
    page.attribute = static_cast<AttributeId>(in.nextU32());
    page.from = in.nextString();
    page.most = std::min(in.nextU32(), mostRows);
    std::size_t held = page.path.length() + page.from.length();
    for (auto const& owed : digestsOwed_) held += owed.path.length() + owed.from.length();
    bool const isTooMuch = !digestsOwed_.empty() && held > mostBytesPending;
    if (isTooMuch || digestsOwed_.size() >= mostPending) {
        throw AttrLogRecordException("more digests asked for than are answered at a time");
    }
    digestsOwed_.push_back(page);
}

// One in each service(): what is asked for takes time, and others wait.
void Session::tellDigest() {
    if (digestsOwed_.empty() || demuxer_->owes() || demuxer_->hasFailed()) return;
    bool const mayTell = mayTellDigest_ && demuxer_->out()->freeBytes() >= Out::blockSize;
    if (!mayTell) return;
    mayTellDigest_ = false;
    DigestPage const page = digestsOwed_.front();
    digestsOwed_.pop_front();
    StateDigest digest;
    String8 fault;
    try {
        Ptr<Entity> const entity = entityAt(page.path);
        if (entity) {
            digest = stateDigest(*entity, page);
        } else {
            fault = page.path + " does not exist";
        }
    } catch (Exception const& failure) {
        fault = failure.message();
    }
    try {
        send(Op::digested, digest.rows, digest.value, digest.next, toldText(fault));
    } catch (FrameTooLongException const& tooLong) {
        send(Op::digested, U32{0}, U64{0}, String8(), tooLong.message());
    }
}

void Session::handleDigested(In& in) {
    if (digestsAsked_.empty()) throw AttrLogRecordException("a digest that was not asked for");
    DigestPage const page = digestsAsked_.front();
    digestsAsked_.pop_front();
    StateDigest digest;
    digest.rows = in.nextU32();
    digest.value = in.nextU64();
    digest.next = in.nextString();
    String8 const fault = in.nextString();
    if (listener_ != nullptr) listener_->onDigested(page, digest, fault);
}

}  // namespace NboAttrLog

}  // namespace Qor
