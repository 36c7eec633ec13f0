#include <ovsdb/client/SecondOpinion.h>

#include <nlohmann/json.hpp>

namespace Ovsdb {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds connectLimit{5000};
constexpr milliseconds betweenTries{500};
constexpr milliseconds grace{200};

}  // namespace

void SecondOpinion::ask(Remote const& remote, TlsFiles const& tls, std::function<void()> answered) {
    remote_ = remote;
    tls_ = tls;
    answered_ = std::move(answered);
    connect();
}

void SecondOpinion::cancel() {
    turn_.cut();
    timer_.cancel();
    connector_.cancel();
    if (session_ != nullptr) session_->close();
    session_.reset();
}

void SecondOpinion::connect() {
    connector_.connect(remote_, tls_, connectLimit,
                       [this](std::shared_ptr<Transport> transport, std::string const&) {
                           if (transport == nullptr) return again();
                           echo(std::move(transport));
                       });
}

void SecondOpinion::echo(std::shared_ptr<Transport> transport) {
    session_ = std::make_shared<RpcSession>(loop_, std::move(transport),
                                            static_cast<RpcListener&>(*this), RpcTimes());
    session_->start();
    session_->request("echo", nlohmann::json::array(), [this](RpcReply const& reply) {
        if (!reply.error) after(grace, &SecondOpinion::tell);
    });
}

void SecondOpinion::again() {
    session_.reset();
    after(betweenTries, &SecondOpinion::connect);
}

void SecondOpinion::after(milliseconds wait, void (SecondOpinion::*step)()) {
    timer_.expires_after(wait);
    timer_.async_wait(turn_.tie([this, step](std::error_code error) {
        if (!error) (this->*step)();
    }));
}

void SecondOpinion::tell() {
    cancel();
    answered_();
}

}  // namespace Ovsdb
