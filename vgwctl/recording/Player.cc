#include <vgwctl/recording/Player.h>

#include <algorithm>

namespace Vgwctl {

Player::~Player() = default;

std::size_t Player::Tape::read(std::span<unsigned char> room) {
    std::size_t const count = std::min(room.size(), waiting.size());
    std::copy_n(waiting.data(), count, reinterpret_cast<char*>(room.data()));
    waiting.erase(0, count);
    return count;
}

void Player::onMounted(Qor::NboAttrLog::MountId, Qor::Entity::Ptr const& entity) {
    if (entity != copy_.entity()) copy_.entityIs(entity);
}

std::optional<double> Player::next() {
    if (!chunk_) chunk_ = recording_.next();
    return chunk_ ? std::optional(chunk_->time) : std::nullopt;
}

// As Connection does, so that what was recorded answers what is asked here.
void Player::begin() {
    session_.reset();
    tape_.waiting.clear();
    session_.emplace(sessionConfig(), tape_, nullptr);
    session_->listenerIs(this);
    session_->mount(Qor::String8(std::string_view(copy_.path())), false, copy_.entity());
}

void Player::step() {
    if (!next()) return;
    if (chunk_->isConnection) {
        begin();
    } else if (session_) {
        tape_.waiting += chunk_->bytes;
        session_->service();
        if (session_->closed().length() != 0)
            throw Failure("the recording can't be played: " +
                          std::string(session_->closed().view()));
    }
    chunk_.reset();
}

void Player::playAll() {
    while (next()) step();
    if (!copy_.entity()) throw Failure("the recording ends before a state has come");
}

}  // namespace Vgwctl
