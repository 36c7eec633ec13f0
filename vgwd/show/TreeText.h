#ifndef VGWD_SHOW_TREE_TEXT_H
#define VGWD_SHOW_TREE_TEXT_H

// The contents as an indented tree for people. What is empty is left out.

#include <vgwd/show/ContentSink.h>

namespace Vgwd {

class TreeText final : public ContentSink {
  public:
    void begin(std::string_view name) override;
    void end() override;
    void value(std::string_view name, Cell const& cell) override;
    void list(std::string_view name, std::vector<Cell> const& cells) override;
    void pairs(std::string_view name, std::vector<CellPair> const& pairs) override;

    std::string take() { return std::move(text_); }

  private:
    void line(std::string_view name, std::string_view rest);

    std::string text_;
    std::vector<std::string> open_;  // names of what was begun; empty once it was written
};

}  // namespace Vgwd

#endif
