#include <vgwctl/command/Record.h>

#include <vgwctl/link/Attachment.h>
#include <vgwctl/recording/Player.h>
#include <vgwctl/recording/Server.h>

#include <charconv>

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
