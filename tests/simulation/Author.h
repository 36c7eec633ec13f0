// One who changes a tree at random, on the source or on a copy, and notes in the plan what the tree
// is to hold. Several authors keep out of each other's way unless told not to.
#ifndef TESTS_SIMULATION_AUTHOR_H
#define TESTS_SIMULATION_AUTHOR_H

#include "Dice.h"
#include "Plan.h"

#include <optional>

namespace Sim {

class Held;

class Author {
  public:
    // `number` of `count` authors; number 0 writes to the source.
    Author(unsigned number, unsigned count, Row top, Plan& plan, Dice& dice)
        : number_(number), count_(count), top_(std::move(top)), plan_(plan), dice_(dice) {}

    void topIs(Row top) { top_ = std::move(top); }
    // Values of all shared rows may be written, whoever else does.
    void isRivalIs(bool isRival) { isRival_ = isRival; }
    // Whether what it writes stands unless another writes the same.
    void isInStepIs(bool isInStep) { isInStep_ = isInStep; }
    // How the processes know the classes through which what it writes goes to the source.
    void aboveIs(std::vector<Knowledge> above) { above_ = std::move(above); }
    // It makes nothing that one of them would leave out.
    void isCarefulIs(bool isCareful) { isCareful_ = isCareful; }
    // Whether texts may be longer than a record.
    void hasLongTextsIs(bool has) { hasLongTexts_ = has; }

    // Makes the entities that stay, in an empty tree. Of author 0.
    void found();
    // One random change.
    void change();
    // Writes each value of the shared rows that is its own, and may not be lost any more.
    void writeAll();
    // Removes references to what stands nowhere, as an agent has to.
    void dropLooseReferences();
    // Opens circles of references, before the tree is let go; its own or another.
    void letGo() const { letGo(top_); }
    void letGo(Row const& row) const;
    unsigned number() const { return number_; }

  private:
    bool isHere(std::string const& row) const { return plan_.lines.contains(row); }
    bool isMine(std::string const& row) const { return ownerOf(row) == number_; }
    bool mayWrite(std::string const& row, Field const& field, unsigned key) const;
    std::pair<std::string, Row> anyRow();
    unsigned anyKey();
    void changeField(std::string const& path, Row const& row, Field const& field);
    void noteWrite(std::string const& line, Held const& before,
                   std::optional<std::string> const& written);
    void put(std::string const& path, Row const& row, Field const& field, unsigned key);
    void erase(std::string const& path, Row const& row, Field const& field, unsigned key);
    void refer(std::string const& path, Row const& row, Field const& field, unsigned key);
    void own(std::string const& path, Row const& row, Field const& field, std::string const& name);
    void disown(std::string const& path, Row const& row, Field const& field,
                std::string const& name);
    void changeOwned(std::string const& path, Row const& row, Field const& field);
    void eraseAt(Plan::Place const& place);
    void dropReferencesTo(std::string const& row);
    void note(std::string const& line, std::string const& text, bool isGone);
    void forget(std::string const& line);
    void touch(std::string const& line);
    std::string lineOf(std::string const& path, Field const& field, unsigned key) const;
    Fresh fresh();
    bool isLeftOut(Shape const& shape) const;
    unsigned anySort();

    unsigned const number_;
    unsigned const count_;
    Row top_;
    Plan& plan_;
    Dice& dice_;
    bool isRival_ = false;
    bool isInStep_ = true;
    bool hasLongTexts_ = true;
    bool isCareful_ = false;
    std::vector<Knowledge> above_;
};

}  // namespace Sim

#endif
