#include <modelc/syntax/Parser.h>

#include <string>
#include <utility>

#include <modelc/syntax/Lexer.h>

namespace Modelc {
namespace {

constexpr std::string_view declarationExpected =
    "unit, namespace, folder, export, import, extern, enum, value or entity";

}  // namespace

Parser::Parser(std::uint32_t file, std::string_view text, Diagnostics& diagnostics)
    : file_(file), diagnostics_(diagnostics), tokens_(Lexer(file, text, diagnostics).tokens()) {}

Tree::File Parser::parse() {
    while (peek().kind != TokenKind::end) {
        try {
            statement();
        } catch (Failed const&) {
            tree_.damaged = true;
            skipDeclaration();
        }
    }
    return std::move(tree_);
}

void Parser::statement() {
    Tree::Doc doc = leadingDoc();
    if (peek().kind == TokenKind::end) return;
    if (atWord("unit")) tree_.doc = doc;
    if (declaration(std::move(doc))) return;
    setting();
    Tree::Doc nowhere;
    closeStatement(nowhere);
}

bool Parser::declaration(Tree::Doc doc) {
    if (acceptWord("enum")) {
        enumeration(std::move(doc));
    } else if (acceptWord("value")) {
        value(std::move(doc));
    } else if (acceptWord("entity")) {
        entity(std::move(doc));
    } else {
        return false;
    }
    return true;
}

void Parser::setting() {
    Token const word = peek();
    if (acceptWord("unit")) {
        setOnce(tree_.unit, needName("the unit's name"), word);
    } else if (acceptWord("namespace")) {
        setOnce(tree_.nameSpace, needQualified("the namespace's name"), word);
    } else if (acceptWord("folder")) {
        folder();
    } else if (acceptWord("export")) {
        exporting();
    } else if (acceptWord("import")) {
        tree_.imports.push_back({needString("the path of a description between double quotes")});
    } else if (acceptWord("extern")) {
        external();
    } else {
        fail(declarationExpected);
    }
}

void Parser::folder() {
    Token const word = peek();
    if (acceptWord("values")) {
        setOnce(tree_.valuesFolder, needString("a folder between double quotes"), word);
    } else if (acceptWord("entities")) {
        setOnce(tree_.entitiesFolder, needString("a folder between double quotes"), word);
    } else if (acceptWord("operations")) {
        setOnce(tree_.operationsFolder, needString("a folder between double quotes"), word);
    } else {
        fail("values, entities or operations");
    }
}

void Parser::exporting() {
    Token const word = peek();
    setOnce(tree_.exportMacro, needName("the name of a macro"), word);
    needWord("in");
    tree_.exportHeader = needHeader();
}

void Parser::external() {
    needWord("value");
    Tree::External result;
    result.name = needQualified("the full name of a value class");
    needWord("in");
    result.header = needHeader();
    if (acceptWord("by")) {
        needWord("reference");
        result.byReference = true;
    }
    tree_.externals.push_back(std::move(result));
}

void Parser::setOnce(Tree::Word& slot, Tree::Word word, Token const& setting) {
    if (slot.text.empty()) {
        slot = std::move(word);
        return;
    }
    diagnostics_.report({file_, setting.at}, quoted(setting.text) + " is set a second time",
                        "one such setting in a description");
}

template <typename Class, typename Member>
void Parser::classOf(Class result, void (Parser::*head)(Class&), Member (Parser::*member)(),
                     std::vector<Member> Class::*list) {
    try {
        (this->*head)(result);
        need("{");
        body(result, member, list);
    } catch (Failed const&) {
        result.damaged = true;
        tree_.damaged = tree_.damaged || result.name.text.empty();
        skipDeclaration();
    }
    if (!result.name.text.empty()) tree_.declarations.emplace_back(std::move(result));
}

template <typename Class, typename Member>
void Parser::body(Class& result, Member (Parser::*member)(), std::vector<Member> Class::*list) {
    for (;;) {
        Tree::Doc doc = leadingDoc();
        if (accept("}")) return;
        if (peek().kind == TokenKind::end) fail("'}'");
        try {
            Member read = (this->*member)();
            closeStatement(doc);
            read.doc = std::move(doc);
            (result.*list).push_back(std::move(read));
        } catch (Failed const&) {
            result.damaged = true;
            skipStatement();
        }
    }
}

void Parser::enumeration(Tree::Doc doc) {
    Tree::Enumeration result;
    result.doc = std::move(doc);
    classOf(std::move(result), &Parser::enumerationHead, &Parser::enumerator,
            &Tree::Enumeration::enumerators);
}

void Parser::value(Tree::Doc doc) {
    Tree::Value result;
    result.doc = std::move(doc);
    classOf(std::move(result), &Parser::valueHead, &Parser::valueMember, &Tree::Value::members);
}

void Parser::entity(Tree::Doc doc) {
    Tree::Entity result;
    result.doc = std::move(doc);
    classOf(std::move(result), &Parser::entityHead, &Parser::entityMember, &Tree::Entity::members);
}

void Parser::enumerationHead(Tree::Enumeration& result) {
    result.name = needName("the enumeration's name");
}

void Parser::valueHead(Tree::Value& result) {
    result.name = needName("the value's name");
    if (acceptWord("ordered")) {
        needWord("by");
        if (!atWord("fields") && !atWord("hash")) fail("fields or hash");
        result.orderedBy = needName("fields or hash");
    }
    if (acceptWord("with")) {
        needWord("operator");
        need("!");
        result.hasOperatorNot = true;
    }
}

void Parser::entityHead(Tree::Entity& result) {
    result.name = needName("the entity's name");
    need(":");
    result.base = needQualified("the base class");
    need("(");
    result.constructorArgument = needArgument();
    need(")");
    if (acceptWord("as")) result.as = needName("an enumerator of the base's kind");
    if (acceptWord("with")) {
        needWord("factory");
        result.hasFactory = true;
    }
}

}  // namespace Modelc
