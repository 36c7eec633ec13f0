#include <vgwctl/command/Record.h>

#include <vgwctl/link/Attachment.h>
#include <vgwctl/output/ValueText.h>
#include <vgwctl/recording/Player.h>
#include <vgwctl/recording/Server.h>
#include <vgwctl/state/Place.h>

#include <charconv>
#include <map>
#include <optional>
#include <ostream>

namespace Vgwctl {
namespace {

// How many times as fast as it was recorded; 0: at once.
double speedOf(std::string const& word) {
    double speed = 0;
    auto const [end, error] = std::from_chars(word.data(), word.data() + word.size(), speed);
    if (error != std::errc() || end != word.data() + word.size() || !(speed >= 0))
        throw Failure(word + ": expected a speed, such as 1, 10 or 0 for at once");
    return speed;
}

bool isRemote(std::string const& word) {
    return word.starts_with("unix:") || word.starts_with("tcp:") || word.starts_with("ssl:");
}

// Every value of a tree, as a text, by what it is the value of.
using Flat = std::map<std::string, std::string>;

Flat flattened(Qor::Entity& root) {
    Flat flat;
    forEachBelow(root, [&](Qor::Entity& entity) {
        std::string const path = printable(entity.uriPath().view());
        flat[path] = std::string(entity.fwkType()->fullName().view());
        Qor::GenericIf::Ptr const wrapper = wrapped(entity);
        for (Qor::QorAttr const* const attribute : heldAttributes(*entity.fwkType())) {
            if (holdsChildren(entity, *attribute)) continue;
            Value const value = valueOf(*wrapper, *attribute);
            flat[path + " " + std::string(attribute->name().view())] = textOf(value);
        }
    });
    return flat;
}

// The lower of two paths, of which one has to stand in the other.
std::string commonOf(std::string const& one, std::string const& other) {
    if (one == other || one.starts_with(other + "/")) return one;
    if (other.starts_with(one + "/")) return other;
    throw Failure("there is nothing to compare: " + one + " and " + other +
                  " have nothing in common");
}

// One side of a comparison; a recording is opened once, as it may be a pipe.
struct Side {
    std::string word;
    std::optional<Recording> recording;  // none: an agent

    explicit Side(std::string const& of) : word(of) {
        if (!isRemote(of)) recording.emplace(of);
    }
};

// What stands at `path`; of a recording nothing may.
Flat stateOf(Context& context, Side& side, std::string const& path) {
    if (!side.recording) {
        Copy copy(path);
        Connection connection(context.targetAt(side.word), context.deadline());
        copy.mountOn(connection, context.deadline());
        return flattened(copy.root());
    }
    Copy played(side.recording->path());
    Player(*side.recording, played).playAll();
    Qor::Entity::Ptr const entity = entityAt(path);
    return entity ? flattened(*entity) : Flat();
}

}  // namespace

ExitCode runRecord(Context& context, Arguments const& arguments) {
    Copy copy(context.options().path);
    Recorder recorder(arguments.operands[0], copy.path());
    Attachment attachment(context.target(), copy, tellPeople, context.patience(), &recorder);
    attachment.begin(context.deadline());
    recorder.check();
    recorder.keep();
    while (!context.deadline().isOver()) {
        attachment.step(context.deadline());
        recorder.check();
    }
    return ExitCode::success;
}

ExitCode runReplay(Context& context, Arguments const& arguments) {
    Recording recording(arguments.operands[0]);
    double const speed = arguments.operands.size() > 2 ? speedOf(arguments.operands[2]) : 1;
    Copy copy(recording.path());
    Player player(recording, copy);
    // Until there is something to be given.
    while (!copy.entity() && player.next()) player.step();
    if (!copy.entity()) throw Failure("the recording ends before a state has come");
    Server server(arguments.operands[1], copy);
    double const offset = player.next().value_or(0);
    auto const start = Deadline::Clock::now();
    while (!context.deadline().isOver()) {
        auto const next = player.next();
        Deadline until = context.deadline();
        if (next && speed > 0) {
            Deadline::Seconds const due((*next - offset) / speed);
            Deadline::Seconds const passed = Deadline::Clock::now() - start;
            until = until.orAfter(std::max(Deadline::Seconds(0), due - passed));
        } else if (next) {
            until = Deadline::after(Deadline::Seconds(0));
        }
        server.step(until);
        if (next && (speed == 0 || until.isOver())) player.step();
    }
    return ExitCode::success;
}

ExitCode runDiff(Context& context, Arguments const& arguments) {
    Side first(arguments.operands[0]);
    Side second(arguments.operands[1]);
    std::string path = context.options().path;
    for (Side const* const side : {&first, &second})
        if (side->recording) path = commonOf(path, side->recording->path());
    Flat const before = stateOf(context, first, path);
    Flat const after = stateOf(context, second, path);
    if (before.empty() && after.empty()) throw absent(path);
    bool isSame = true;
    auto const print = [&](char sign, Flat::value_type const& one) {
        isSame = false;
        context.out() << sign << ' ' << one.first << " = " << one.second << '\n';
    };
    auto left = before.begin();
    auto right = after.begin();
    while (left != before.end() || right != after.end()) {
        bool const isLeft =
            right == after.end() || (left != before.end() && left->first <= right->first);
        bool const isRight =
            left == before.end() || (right != after.end() && right->first <= left->first);
        bool const isEqual = isLeft && isRight && left->second == right->second;
        if (isLeft && !isEqual) print('-', *left);
        if (isRight && !isEqual) print('+', *right);
        if (isLeft) ++left;
        if (isRight) ++right;
    }
    return isSame ? ExitCode::success : ExitCode::differs;
}

// What comes from the agent changes the copy, and the copy's own sessions hear of that.
ExitCode runRelay(Context& context, Arguments const& arguments) {
    Copy copy(context.options().path);
    Attachment attachment(context.target(), copy, tellPeople, context.patience());
    attachment.begin(context.deadline());
    Server server(arguments.operands[0], copy);
    while (!context.deadline().isOver()) {
        server.step(context.deadline().orAt(attachment.due()), attachment.awaited());
        attachment.step(Deadline::after(Deadline::Seconds(0)));
    }
    return ExitCode::success;
}

}  // namespace Vgwctl
