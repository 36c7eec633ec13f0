// Tokens -> tree.
//
// A statement that cannot be read is reported and passed over up to its `;` or to the brace that
// closes it, and reading goes on there, so that one mistake hides no other. Nothing here recurses:
// the grammar nests at most one body deep, and braces that are passed over are counted.
#ifndef MODELC_SYNTAX_PARSER_H
#define MODELC_SYNTAX_PARSER_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include <modelc/syntax/Diagnostics.h>
#include <modelc/syntax/Token.h>
#include <modelc/syntax/Tree.h>

namespace Modelc {

class Parser {
  public:
    Parser(std::uint32_t file, std::string_view text, Diagnostics& diagnostics);

    Tree::File parse();

  private:
    // Raised by a failed need, after it has been reported, and caught by the statement around it.
    struct Failed {};

    Token const& peek(std::size_t ahead = 0) const;
    Token const& take();
    bool at(std::string_view mark) const;
    bool atWord(std::string_view word) const;
    bool accept(std::string_view mark);
    bool acceptWord(std::string_view word);
    [[noreturn]] void fail(std::string_view expected);
    void need(std::string_view mark);
    void needWord(std::string_view word);
    Tree::Word needName(std::string_view expected);
    Tree::Word needQualified(std::string_view expected);
    Tree::Word needHeader();
    Tree::Word needString(std::string_view expected);
    Tree::Number needNumber(std::string_view expected);
    Tree::Literal needLiteral();
    Tree::Argument needArgument();

    Tree::Doc leadingDoc();
    void closeStatement(Tree::Doc& doc);
    void skipStatement();
    void skipDeclaration();

    void statement();
    void setting();
    void folder();
    void exporting();
    void external();
    bool declaration(Tree::Doc doc);
    void enumeration(Tree::Doc doc);
    void value(Tree::Doc doc);
    void entity(Tree::Doc doc);
    void enumerationHead(Tree::Enumeration& result);
    void valueHead(Tree::Value& result);
    void entityHead(Tree::Entity& result);
    void setOnce(Tree::Word& slot, Tree::Word word, Token const& setting);

    Tree::Enumerator enumerator();
    Tree::ValueMember valueMember();
    Tree::EntityMember entityMember();
    Tree::AttributeForm attributeForm();
    Tree::OperationForm operationForm();
    void modifiers(Tree::EntityMember& member);
    std::vector<Tree::Word> computedFrom();

    // Runs `head`, then reads a body of members with `member`, each closed by `;`, into
    // `result.*list`.
    template <typename Class, typename Member>
    void classOf(Class result, void (Parser::*head)(Class&), Member (Parser::*member)(),
                 std::vector<Member> Class::*list);
    template <typename Class, typename Member>
    void body(Class& result, Member (Parser::*member)(), std::vector<Member> Class::*list);

    std::uint32_t file_;
    Diagnostics& diagnostics_;
    std::vector<Token> tokens_;
    std::size_t index_ = 0;
    Tree::File tree_;
};

}  // namespace Modelc

#endif
