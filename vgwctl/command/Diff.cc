#include <vgwctl/command/Diff.h>

#include <vgwctl/link/Connection.h>
#include <vgwctl/recording/Player.h>
#include <vgwctl/state/Place.h>

#include <map>
#include <optional>
#include <ostream>

namespace Vgwctl {
namespace {

bool isRemote(std::string const& word) {
    return word.starts_with("unix:") || word.starts_with("tcp:") || word.starts_with("ssl:");
}

// A path, and the name of an attribute; without one, the entity, whose value is its class.
using Where = std::pair<std::string, std::string>;
using Flat = std::map<Where, Value>;

Flat flattened(Qor::Entity& root) {
    Flat flat;
    forEachBelow(root, [&](Qor::Entity& entity) {
        std::string const path(entity.uriPath().view());
        flat[{path, ""}] = textValue(std::string(entity.fwkType()->fullName().view()));
        Qor::GenericIf::Ptr const wrapper = wrapped(entity);
        for (Qor::QorAttr const* const attribute : heldAttributes(*entity.fwkType())) {
            if (holdsChildren(entity, *attribute)) continue;
            flat[{path, std::string(attribute->name().view())}] = valueOf(*wrapper, *attribute);
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

// In the order of paths: calls differs(where, before, after), a side that has nothing there being
// null.
template <class Differs>
void forEachDifference(Flat const& before, Flat const& after, Differs const& differs) {
    auto left = before.begin();
    auto right = after.begin();
    while (left != before.end() || right != after.end()) {
        bool const isLeft =
            right == after.end() || (left != before.end() && left->first <= right->first);
        bool const isRight =
            left == before.end() || (right != after.end() && right->first <= left->first);
        Where const& where = isLeft ? left->first : right->first;
        Value const* const one = isLeft ? &left->second : nullptr;
        Value const* const other = isRight ? &right->second : nullptr;
        if (!one || !other || *one != *other) differs(where, one, other);
        if (isLeft) ++left;
        if (isRight) ++right;
    }
}

class Printer {
  public:
    explicit Printer(Context& context)
        : context_(context), table_({"path", "attribute", "before", "after"}) {}

    void print(Where const& where, Value const* before, Value const* after) {
        hasPrinted_ = true;
        if (context_.options().style.format != Format::table) {
            table_.rowInc({textValue(where.first), textValue(where.second),
                           before ? *before : Value(), after ? *after : Value()});
            return;
        }
        if (before) printLine('-', where, *before);
        if (after) printLine('+', where, *after);
    }
    void finish() const {
        TableStyle style = context_.options().style;
        if (style.format == Format::table) return;
        if (style.data == TextForm::string) style.data = TextForm::bare;
        table_.print(context_.out(), style);
    }
    bool hasPrinted() const { return hasPrinted_; }

  private:
    void printLine(char sign, Where const& where, Value const& value) {
        auto const& [path, attribute] = where;
        // A class is never in quotes.
        std::string const text = attribute.empty() ? value.text : textOf(value);
        context_.out() << sign << ' ' << printable(path) << (attribute.empty() ? "" : " ")
                       << attribute << " = " << text << '\n';
    }

    Context& context_;
    Table table_;
    bool hasPrinted_ = false;
};

}  // namespace

ExitCode runDiff(Context& context, Arguments const& arguments) {
    Side first(arguments.operands[0]);
    Side second(arguments.operands[1]);
    std::string path = context.options().path;
    for (Side const* const side : {&first, &second})
        if (side->recording) path = commonOf(path, side->recording->path());
    Flat const before = stateOf(context, first, path);
    Flat const after = stateOf(context, second, path);
    if (before.empty() && after.empty()) throw absent(path);
    Printer printer(context);
    forEachDifference(before, after, [&](auto const&... one) { printer.print(one...); });
    printer.finish();
    return printer.hasPrinted() ? ExitCode::differs : ExitCode::success;
}

}  // namespace Vgwctl
