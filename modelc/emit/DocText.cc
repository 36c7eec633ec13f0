#include <modelc/emit/DocText.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace Modelc {
namespace {

constexpr std::size_t lineLength = 100;

std::vector<std::string> wordsOf(std::string const& line) {
    std::vector<std::string> words;
    std::size_t at = 0;
    while ((at = line.find_first_not_of(" \t", at)) != std::string::npos) {
        std::size_t const end = std::min(line.find_first_of(" \t", at), line.size());
        words.push_back(line.substr(at, end - at));
        at = end;
    }
    return words;
}

std::string printable(std::string line) {
    std::replace_if(
        line.begin(), line.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }, ' ');
    return line;
}

// Gathers words into lines of a comment.
class Comment {
  public:
    Comment(std::size_t indentation, std::string marker)
        : longest_(lineLength - indentation), marker_(std::move(marker)) {}

    void line(std::string const& given) {
        std::string const line = printable(given);
        bool const fits = marker_.size() + 1 + line.size() <= longest_;
        if (line.empty() || (line.front() == ' ' && fits)) {
            close();
            open_ = line.empty() ? marker_ : marker_ + " " + line;
            close();
            return;
        }
        for (std::string const& word : wordsOf(line)) {
            if (!open_.empty() && open_.size() + 1 + word.size() > longest_) close();
            open_ += open_.empty() ? marker_ + " " + word : " " + word;
        }
    }

    std::string text() {
        close();
        return std::move(text_);
    }

  private:
    // A backslash at its end would draw the next line into the comment.
    void close() {
        if (open_.ends_with('\\')) open_ += '.';
        if (!open_.empty()) text_ += open_ + "\n";
        open_.clear();
    }

    std::size_t longest_;
    std::string marker_;
    std::string open_;
    std::string text_;
};

}  // namespace

std::string commentText(Doc const& doc, std::size_t indentation, std::string const& marker) {
    Comment comment(indentation, marker);
    for (std::string const& line : doc) comment.line(line);
    return comment.text();
}

std::string docText(Doc const& doc, std::size_t indentation) {
    return commentText(doc, indentation, "///");
}

}  // namespace Modelc
