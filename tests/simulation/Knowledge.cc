#include "Knowledge.h"

#include "Tap.h"

#include <qor/attrlog/session/Session.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace Sim {

namespace {

using Qor::NboAttrLog::Session;

struct Names {
    std::string_view compiled;
    std::string_view described;
};
constexpr std::array<Names, 3> scopes{
    {{"Vgw::", "Dyn::"}, {"Lab::", "Dab::"}, {"Ties::", "Dies::"}}};
constexpr std::string_view mark = "::";

// Exchanges the name that ends with the mark behind `end`, if it is one.
void exchange(std::string& text, std::size_t end) {
    for (Names const& names : scopes) {
        std::size_t const size = names.compiled.size();
        if (end < size) continue;
        std::string_view const there = std::string_view(text).substr(end - size, size);
        if (there == names.compiled) {
            text.replace(end - size, size, names.described);
        } else if (there == names.described) {
            text.replace(end - size, size, names.compiled);
        } else {
            continue;
        }
        return;
    }
}

// From `from` on; names that began before are done.
void exchangeAll(std::string& text, std::size_t from) {
    for (std::size_t at = from; (at = text.find(mark, at)) != std::string::npos;) {
        at += mark.size();
        exchange(text, at);
    }
}

// How many of the last bytes may be the beginning of a name.
std::size_t begun(std::string_view text) {
    std::size_t longest = 0;
    for (Names const& names : scopes) {
        for (std::string_view const name : {names.compiled, names.described}) {
            for (std::size_t size = std::min(name.size() - 1, text.size()); size > longest;
                 --size) {
                if (text.ends_with(name.substr(0, size))) longest = size;
            }
        }
    }
    return longest;
}

}  // namespace

std::string otherNames(std::string text) {
    exchangeAll(text, 0);
    return text;
}

std::string NameExchange::take(std::size_t most) {
    std::size_t const ready = text_.size() - begun(text_);
    if (ready > done_) {
        exchangeAll(text_, done_);
        done_ = ready;
    }
    std::string const taken = text_.substr(0, std::min(done_, most));
    text_.erase(0, taken.size());
    done_ -= taken.size();
    return taken;
}

void learnClasses() {
    std::vector<Sent> history;
    Tap knowing(history, true);
    Tap asking(history, false);
    asking.exchangesNamesIs(true);
    knowing.exchangesNamesIs(true);
    Qor::NboAttrLog::MemoryTransport::connect(knowing.memory(), asking.memory());
    Session::Config config;
    config.takesTypes = true;
    Session asker(config, asking, nullptr);
    config.takesTypes = false;
    config.side = Qor::NboAttrLog::Demuxer::Side::accepting;
    Session teller(config, knowing, nullptr);
    for (int turn = 0; turn < 100; ++turn) {
        asker.service();
        teller.service();
    }
    if (!asker.closed().empty()) throw std::runtime_error(std::string(asker.closed().view()));
}

}  // namespace Sim
