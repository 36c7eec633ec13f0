// A tree of an agent's entities that changes at random, a naive model of what it holds, and the
// canonical text of either.
#ifndef TESTS_PROPERTY_ATTRLOG_TREEMODEL_H
#define TESTS_PROPERTY_ATTRLOG_TREEMODEL_H

#include <qor/tree/Dir.h>

#include <vgw/agent/Status.h>

#include <cstdint>
#include <map>
#include <random>
#include <string>

// What a tree holds, a line each: path and value. The model writes it beside the entities and
// shares no code with them.
using Lines = std::map<std::string, std::string>;

Lines linesOf(Vgw::Status const& status);

// The first line in which they differ, without the value: a text may be long.
std::string difference(Lines const& left, Lines const& right);

class ChangingTree {
  public:
    ChangingTree(Vgw::Status::Ptr status, std::uint64_t seed);

    // One random change.
    void step();
    Lines const& model() const { return model_; }
    std::uint64_t below(std::uint64_t limit) { return random_() % limit; }

  private:
    std::string text();
    void logicalSwitch(std::string const& name);
    void physicalSwitch(std::string const& name);
    void port(std::string const& name);
    void locator(std::string const& name);
    void status();
    void set(std::string const& path, std::string const& value) { model_[path] = value; }
    void erase(std::string const& path) { model_.erase(path); }
    void eraseBelow(std::string const& path);
    bool has(std::string const& path) const { return model_.contains(path); }

    Vgw::Status::Ptr status_;
    std::mt19937_64 random_;
    Lines model_;
};

#endif
