// How a process of the simulation knows the classes: compiled in, or by their descriptions alone,
// as one that links the framework and the values and nothing more.
//
// All processes share one registry. So each class stands there twice: under its own name, and,
// taken from a peer that described it, under another of the same length ("Lab::Node", "Dab::Node").
// Where a process that knows descriptions meets one of compiled classes, the names are exchanged on
// the way: it finds in the registry what it was told, and never the compiled class.
#ifndef TESTS_SIMULATION_KNOWLEDGE_H
#define TESTS_SIMULATION_KNOWLEDGE_H

#include <string>
#include <string_view>

namespace Sim {

enum class Knowledge { compiled, described };

// The text with each class under its other name. Done twice it is the text as it was.
std::string otherNames(std::string text);

// The same of a stream that comes in pieces: a piece ends where a name may begin, and what is left
// of it comes with the next.
class NameExchange {
  public:
    static constexpr std::size_t longest = 6;  // characters of a name

    void append(std::string_view bytes) { text_ += bytes; }
    // What is at hand and at most so much, exchanged.
    std::string take(std::size_t most);
    std::size_t waiting() const { return text_.size(); }

  private:
    std::string text_;
    std::size_t done_ = 0;  // of its bytes, from the first on
};

// Has a peer that has them compiled in describe all classes to one that has not. Once is enough.
void learnClasses();

}  // namespace Sim

#endif
