// The members of enumerations, values and entities.
#include <string>
#include <utility>

#include <modelc/syntax/Parser.h>

namespace Modelc {

Tree::Enumerator Parser::enumerator() {
    Tree::Enumerator result;
    result.name = needName("the enumerator's name or '}'");
    need("=");
    result.number = needNumber("the enumerator's number");
    return result;
}

Tree::ValueMember Parser::valueMember() {
    Tree::ValueMember result;
    result.id = needNumber("a member's id or '}'");
    result.isConst = acceptWord("const");
    result.name = needName("the member's name");
    need(":");
    result.type = needQualified("the member's type");
    if (accept("=")) {
        result.initial = needLiteral();
    } else if (acceptWord("computed")) {
        needWord("from");
        result.computedFrom = computedFrom();
    }
    return result;
}

std::vector<Tree::Word> Parser::computedFrom() {
    std::vector<Tree::Word> fields;
    need("(");
    do fields.push_back(needName("a field's name"));
    while (accept(","));
    need(")");
    return fields;
}

Tree::EntityMember Parser::entityMember() {
    Tree::EntityMember result;
    result.id = needNumber("a member's id or '}'");
    modifiers(result);
    result.name = needName("the member's name");
    if (accept("(")) {
        result.form = operationForm();
    } else if (accept(":")) {
        result.form = attributeForm();
    } else {
        fail("':' for an attribute or '(' for an operation");
    }
    return result;
}

// virtual, const and static are modifiers in front of a word only, so that an attribute may bear
// such a name to C++'s own regret, which the check then reports.
void Parser::modifiers(Tree::EntityMember& member) {
    while (peek(1).kind == TokenKind::word) {
        if (acceptWord("virtual")) {
            member.isVirtual = true;
        } else if (acceptWord("const")) {
            member.isConst = true;
        } else if (acceptWord("static")) {
            member.isStatic = true;
        } else {
            return;
        }
    }
}

Tree::AttributeForm Parser::attributeForm() {
    Tree::AttributeForm result;
    if (acceptWord("owns")) {
        result.relation = Tree::Relation::owns;
    } else if (acceptWord("refers")) {
        result.relation = Tree::Relation::refers;
    }
    result.type = needQualified("the attribute's type");
    if (accept("[")) {
        result.key = needQualified("the type of the key");
        need("]");
    }
    if (accept("=")) result.initial = needLiteral();
    return result;
}

Tree::OperationForm Parser::operationForm() {
    Tree::OperationForm result;
    if (!accept(")")) {
        do result.arguments.push_back(needArgument());
        while (accept(","));
        need(")");
    }
    if (accept(":")) result.result = needQualified("the type of the result");
    return result;
}

}  // namespace Modelc
