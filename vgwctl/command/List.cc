#include <vgwctl/command/List.h>

#include <vgwctl/state/Operand.h>
#include <vgwctl/state/Place.h>

#include <algorithm>
#include <map>
#include <ostream>

namespace Vgwctl {
namespace {

using Qor::Entity;
using Rows = std::vector<Entity::Ptr>;

constexpr char const* pathHeading = "_path";

std::vector<std::string> headingsOf(Qor::QorType const& type) {
    std::vector<std::string> headings{pathHeading};
    for (Qor::QorAttr const* const attribute : heldAttributes(type))
        headings.emplace_back(attribute->name().view());
    return headings;
}

Table::Row rowOf(Entity& entity) {
    Table::Row row{{Value::Kind::reference, std::string(entity.uriPath().view()), {}}};
    Qor::GenericIf::Ptr const wrapper = wrapped(entity);
    for (Qor::QorAttr const* const attribute : heldAttributes(*entity.fwkType()))
        row.push_back(valueOf(*wrapper, *attribute));
    return row;
}

void printRows(Context& context, Rows const& rows) {
    std::map<std::string, Table> tables;
    for (Entity::Ptr const& row : rows) {
        Qor::QorType const& type = *row->fwkType();
        auto const name = std::string(type.fullName().view());
        tables.try_emplace(name, headingsOf(type)).first->second.rowInc(rowOf(*row));
    }
    bool isFirst = true;
    for (auto const& [name, ofType] : tables) {
        if (!isFirst) context.out() << '\n';
        isFirst = false;
        ofType.print(context.out(), context.options().style);
    }
}

// With none, the headings stand alone.
void printNone(Context& context, std::string const& word) {
    if (word.front() == '/') return;
    Table(headingsOf(neededType(word))).print(context.out(), context.options().style);
}

bool isNamed(Entity& entity, std::string const& name) {
    // Rows whose name is an identifier have what people call them beside it.
    Qor::QorAttr::Ptr const label = entity.fwkType()->attr(Qor::Name("displayName"));
    if (label && valueOf(*wrapped(entity), *label).text == name) return true;
    std::string const path(entity.uriPath().view());
    return path == name || entity.name().view() == name || path.substr(path.rfind('/') + 1) == name;
}

Rows chosen(Rows const& rows, std::vector<std::string> const& names) {
    Rows found;
    for (std::string const& name : names) {
        auto const at = std::find_if(rows.begin(), rows.end(),
                                     [&](auto const& row) { return isNamed(*row, name); });
        if (at == rows.end()) throw absent(name);
        found.push_back(*at);
    }
    return found;
}

std::vector<Operand> conditionsOf(std::vector<std::string> const& words) {
    std::vector<Operand> conditions;
    for (std::size_t n = 1; n < words.size(); ++n) {
        conditions.push_back(operandOf(words[n]));
        if (conditions.back().relation == Operand::Relation::none)
            throw Failure(words[n] + ": expected a condition, such as " + words[n] + "=VALUE");
    }
    return conditions;
}

}  // namespace

ExitCode runList(Context& context, Arguments const& arguments) {
    std::string const& word = arguments.operands[0];
    Rows rows = rowsOf(word, context.root());
    std::vector<std::string> const names(arguments.operands.begin() + 1, arguments.operands.end());
    if (!names.empty()) rows = chosen(rows, names);
    if (rows.empty()) printNone(context, word);
    printRows(context, rows);
    return ExitCode::success;
}

ExitCode runFind(Context& context, Arguments const& arguments) {
    std::string const& word = arguments.operands[0];
    auto const conditions = conditionsOf(arguments.operands);
    Rows rows = rowsOf(word, context.root());
    std::erase_if(rows, [&](Entity::Ptr const& row) {
        return !std::all_of(conditions.begin(), conditions.end(),
                            [&](Operand const& condition) { return holds(condition, *row); });
    });
    if (rows.empty()) printNone(context, word);
    printRows(context, rows);
    return ExitCode::success;
}

// An agent that has a directory of its sessions has it there.
ExitCode runSessions(Context& context, Arguments const&) {
    printRows(context,
              rowsOf(std::string(context.root().uriPath().view()) + "/sessions", context.root()));
    return ExitCode::success;
}

}  // namespace Vgwctl
