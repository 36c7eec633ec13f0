// How a process of the simulation knows the classes: compiled in, or by their descriptions alone,
// as one that links the framework and the values and nothing more. Of the latter some have all of
// them from the beginning, and others learn of a few only when they meet them.
//
// All processes share one registry. So each class stands there several times: under its own name,
// and, taken from a peer that described it, under others of the same length ("Lab::Node",
// "Dab::Node"); those that are learned late under one for each process ("Lat2::Star"). Where two
// processes meet that know the classes differently, the names are exchanged on the way: each finds
// in the registry what it was told, and never what another knows.
#ifndef TESTS_SIMULATION_KNOWLEDGE_H
#define TESTS_SIMULATION_KNOWLEDGE_H

#include <string>
#include <string_view>

namespace Sim {

// `late0` is that of process 0, and so on.
enum class Knowledge { compiled, described, late0, late1, late2, late3 };
inline constexpr unsigned waysToKnow = 6;

inline Knowledge lateOf(unsigned process) {
    return static_cast<Knowledge>(static_cast<unsigned>(Knowledge::late0) + process);
}
inline bool isLate(Knowledge knowledge) { return knowledge >= Knowledge::late0; }

// The text with the name of each class as the compiled one bears it.
std::string compiledNames(std::string text);
// The text, in which compiled names stand, with those that classes have to a process.
std::string namesFor(Knowledge knowledge, std::string text);
// The same, with names as `there` has one.
std::string namesLike(std::string_view there, std::string text);

// What two processes tell each other, with the names of each as the other has them. Done twice it
// is the text as it was. A stream comes in pieces: a piece ends where a name may begin, and what is
// left of it comes with the next.
class NameExchange {
  public:
    static constexpr std::size_t longest = 6;  // characters of a name

    NameExchange() = default;
    NameExchange(Knowledge one, Knowledge other) : one_(one), other_(other) {}

    bool isNone() const { return one_ == other_; }
    std::string exchanged(std::string text) const;

    void append(std::string_view bytes) { text_ += bytes; }
    // What is at hand and at most so much, exchanged.
    std::string take(std::size_t most);
    std::size_t waiting() const { return text_.size(); }

  private:
    Knowledge one_ = Knowledge::compiled;
    Knowledge other_ = Knowledge::compiled;
    std::string text_;
    std::size_t done_ = 0;  // of its bytes, from the first on
};

// Has a peer that has them compiled in describe all classes to one that has not. Once is enough.
void learnClasses();
// Of a process that learns late: whether it has learned the class, by its compiled name; of others,
// true.
bool hasLearned(Knowledge knowledge, std::string const& className);
// It has learned none again.
void forgetLearned(Knowledge knowledge);
// Whether a full name is that of a class which the process is to learn late.
bool isLearnedLate(Knowledge knowledge, std::string_view fullName);

}  // namespace Sim

#endif
