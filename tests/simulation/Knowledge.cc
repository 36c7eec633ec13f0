#include "Knowledge.h"

#include "Tap.h"

#include <qor/attrlog/session/Session.h>
#include <qor/dynamic/DescribedEnum.h>
#include <qor/registry/QorType.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

namespace Sim {

namespace {

using Qor::NboAttrLog::Session;

// One scope, as each way of knowing the classes has it.
using Names = std::array<std::string_view, waysToKnow>;

constexpr Names alike(std::string_view compiled, std::string_view described) {
    return {compiled, described, described, described, described, described};
}
constexpr std::array<Names, 4> scopes{
    {alike("Vgw::", "Dyn::"), alike("Lab::", "Dab::"), alike("Ties::", "Dies::"),
     Names{"Late::", "Date::", "Lat0::", "Lat1::", "Lat2::", "Lat3::"}}};
constexpr Names const& scopeOfTheLate = scopes.back();
constexpr std::string_view mark = "::";

std::string_view nameIn(Names const& names, Knowledge knowledge) {
    return names[static_cast<unsigned>(knowledge)];
}

// What stands in the place of each name that ends with a mark, from `from` on; names that began
// before are done. `other` is asked of each scope and of the name that it has there, and gives the
// one that it is to have.
template <class Other>
void replaceAll(std::string& text, std::size_t from, Other const& other) {
    for (std::size_t at = from; (at = text.find(mark, at)) != std::string::npos;) {
        at += mark.size();
        for (Names const& names : scopes) {
            std::size_t const size = names.front().size();
            if (at < size) continue;
            std::string_view const there = std::string_view(text).substr(at - size, size);
            if (std::find(names.begin(), names.end(), there) == names.end()) continue;
            text.replace(at - size, size, other(names, there));
            break;
        }
    }
}

void exchangeAll(std::string& text, std::size_t from, Knowledge one, Knowledge other) {
    replaceAll(text, from, [&](Names const& names, std::string_view there) {
        if (there == nameIn(names, one)) return nameIn(names, other);
        if (there == nameIn(names, other)) return nameIn(names, one);
        return there;
    });
}

// How many of the last bytes may be the beginning of a name.
std::size_t begun(std::string_view text) {
    std::size_t longest = 0;
    for (Names const& names : scopes) {
        for (std::string_view const name : names) {
            for (std::size_t size = std::min(name.size() - 1, text.size()); size > longest;
                 --size) {
                if (text.ends_with(name.substr(0, size))) longest = size;
            }
        }
    }
    return longest;
}

// What has been given up is found no more, and there is one of it.
void giveUp(Qor::QorType* type) {
    static auto const nothing = Qor::make<Qor::OpaqueType>(Qor::Name("Nothing"));
    Qor::Name const name("Sim::Nothing");
    Qor::QorType::typeNodeIs(type, name);
    Qor::QorType::typeNodeIs(nothing.ptr(), name);
}

}  // namespace

std::string compiledNames(std::string text) {
    replaceAll(text, 0, [](Names const& names, std::string_view) { return names.front(); });
    return text;
}

std::string namesFor(Knowledge knowledge, std::string text) {
    replaceAll(text, 0, [&](Names const& names, std::string_view there) {
        return there == names.front() ? nameIn(names, knowledge) : there;
    });
    return text;
}

std::string namesLike(std::string_view there, std::string text) {
    for (Names const& names : scopes) {
        auto const found = std::find_if(names.begin(), names.end(), [&](std::string_view name) {
            return there.starts_with(name);
        });
        if (found == names.end()) continue;
        return namesFor(static_cast<Knowledge>(found - names.begin()), std::move(text));
    }
    return text;
}

std::string NameExchange::exchanged(std::string text) const {
    exchangeAll(text, 0, one_, other_);
    return text;
}

std::string NameExchange::take(std::size_t most) {
    std::size_t const ready = text_.size() - begun(text_);
    if (ready > done_) {
        exchangeAll(text_, done_, one_, other_);
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
    asking.exchangeIs(NameExchange(Knowledge::compiled, Knowledge::described));
    knowing.exchangeIs(NameExchange(Knowledge::compiled, Knowledge::described));
    auto carriers = connected(Carried::inMemory);
    knowing.carrierIs(std::move(carriers.first));
    asking.carrierIs(std::move(carriers.second));
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

bool isLearnedLate(Knowledge knowledge, std::string_view fullName) {
    return isLate(knowledge) && fullName.starts_with(nameIn(scopeOfTheLate, knowledge));
}

bool hasLearned(Knowledge knowledge, std::string const& className) {
    if (!className.starts_with(scopeOfTheLate.front())) return true;
    auto const name = namesFor(knowledge, className);
    return Qor::QorType::type(Qor::Name(std::string_view(name))) != nullptr;
}

void forgetLearned(Knowledge knowledge) {
    for (Qor::QorType* const type : Qor::QorType::types()) {
        if (isLearnedLate(knowledge, type->fullName().view())) giveUp(type);
    }
}

}  // namespace Sim
