// What a row should hold, kept in plain maps of texts, and what a copy or a comparison of two rows
// should do, from tables of its own. It knows the compiled classes by their names alone.
#ifndef TESTS_PROPERTY_VGW_NAIVE_ROW_H
#define TESTS_PROPERTY_VGW_NAIVE_ROW_H

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Naive {

/// The changes that should be told: attribute and key.
using Changes = std::vector<std::pair<std::string, std::string>>;
using Members = std::map<std::string, std::string>;

class Row {
  public:
    explicit Row(std::string className);

    std::string const className;
    std::map<std::string, std::string> single;
    std::map<std::string, Members> keyed;

    Changes set(std::string const& attribute, std::string const& value);
    Changes set(std::string const& attribute, std::string const& key, std::string const& value);
    Changes remove(std::string const& attribute, std::string const& key);
    Changes removeAll(std::string const& attribute);

    /// Whether a clone from `source` is one that does not stop the process.
    bool canClone(Row const& source) const;
    Changes clone(Row const& source);
    /// Nothing for rows that have no comparison with each other.
    std::optional<bool> isEqualTo(Row const& other) const;

  private:
    bool marks(std::string const& attribute) const;
    bool sameMembers(std::string const& attribute, Row const& other) const;
    Changes mirror(std::string const& attribute, Row const& source);
};

}  // namespace Naive

#endif
