#include <vgwctl/command/Watch.h>

#include <vgwctl/command/ChangePrinter.h>
#include <vgwctl/link/Attachment.h>
#include <vgwctl/state/Operand.h>
#include <vgwctl/state/Place.h>

#include <algorithm>
#include <ostream>

namespace Vgwctl {
namespace {

constexpr std::string_view words[] = {"!initial", "!insert", "!delete", "!modify"};

// What is shown of all that changes.
struct Selection {
    std::string path;                    // that and what stands below it
    Qor::QorType const* type = nullptr;  // null: of any class
    std::set<std::string> attributes;    // empty: all
    std::set<std::string> refused;       // words without their mark

    bool takes(Change const& change) const {
        bool const isPath = change.path == path || change.path.starts_with(path + "/");
        bool const isType = type == nullptr || change.type->isA(*type);
        bool const isAttribute = attributes.empty() || attributes.contains(change.attribute) ||
                                 change.kind == Change::Kind::deleted;
        return isPath && isType && isAttribute && !refused.contains(wordOf(change.kind));
    }
    // What leads to the path has to be followed too.
    bool follows(std::string const& at) const {
        return at == path || at.starts_with(path + "/") || path.starts_with(at + "/");
    }
};

void addWords(Selection& selection, std::string const& list) {
    std::size_t at = 0;
    while (at < list.size()) {
        std::size_t const comma = std::min(list.find(',', at), list.size());
        std::string const word = list.substr(at, comma - at);
        at = comma + 1;
        if (word.empty()) continue;
        if (word.front() != '!') {
            selection.attributes.insert(word);
        } else if (std::find(std::begin(words), std::end(words), word) != std::end(words)) {
            selection.refused.insert(word.substr(1));
        } else {
            throw Failure(word + ": expected !initial, !insert, !delete or !modify");
        }
    }
}

// Of a word that names none nothing would ever be printed.
void needAttribute(Selection const& selection, std::string const& attribute) {
    if (attribute == entryStateAttribute) return;
    auto const types = Qor::QorType::types();
    bool const isThere = std::any_of(types.begin(), types.end(), [&](Qor::QorType* type) {
        bool const isTaken = selection.type == nullptr || type->isA(*selection.type);
        return isTaken && type->isEntity() && type->attr(Qor::Name(std::string_view(attribute)));
    });
    if (!isThere)
        throw Failure("no entity of those has an attribute " + attribute, ExitCode::absent);
}

Selection selectionOf(Arguments const& arguments, std::string const& root) {
    Selection selection;
    selection.path = root;
    for (std::size_t n = 0; n < arguments.operands.size(); ++n) {
        std::string const& word = arguments.operands[n];
        if (n > 0 || word.starts_with('!')) {
            addWords(selection, word);
        } else if (word.starts_with('/')) {
            selection.path = word;
        } else {
            selection.type = &neededClass(word);
        }
    }
    for (std::string const& attribute : selection.attributes) needAttribute(selection, attribute);
    return selection;
}

}  // namespace

ExitCode runWatch(Context& context, Arguments const& arguments) {
    Copy copy(context.options().path);
    Attachment attachment(context.target(), copy, tellPeople, context.patience());
    attachment.begin(context.deadline());
    Selection const selection = selectionOf(arguments, copy.path());
    if (!standsAt(selection.path)) tellPeople(selection.path + " does not exist yet");
    ChangePrinter printer(context.options(), context.out());
    Follower follower(
        [&](Change const& change) {
            if (selection.takes(change)) printer.print(change);
        },
        [&](std::string const& path) { return selection.follows(path); });
    follower.follow(copy.root());
    for (;;) {
        // Why nobody can read it any more is told when the program ends.
        if (!context.out().flush()) return ExitCode::fatal;
        if (context.deadline().isOver()) return ExitCode::timeout;
        attachment.step(context.deadline());
        // Not by halves, while a new connection brings what differs.
        if (attachment.isConnected()) follower.flush();
    }
}

ExitCode runWaitUntil(Context& context, Arguments const& arguments) {
    std::string const& path = arguments.operands[0];
    std::vector<Operand> conditions;
    for (std::size_t n = 1; n < arguments.operands.size(); ++n) {
        conditions.push_back(operandOf(arguments.operands[n]));
        if (conditions.back().relation == Operand::Relation::none)
            throw Failure(arguments.operands[n] + ": expected ATTRIBUTE[:KEY]=VALUE");
    }
    Copy copy(context.options().path);
    Attachment attachment(context.target(), copy, tellPeople, context.patience());
    attachment.begin(context.deadline());
    for (;;) {
        Qor::Entity::Ptr const entity = entityAt(path);
        bool const isMet =
            entity && std::all_of(conditions.begin(), conditions.end(),
                                  [&](Operand const& one) { return holds(one, *entity); });
        if (isMet && attachment.isConnected()) return ExitCode::success;
        context.deadline().check("what was waited for has not come");
        attachment.step(context.deadline());
    }
}

}  // namespace Vgwctl
