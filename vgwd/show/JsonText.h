#ifndef VGWD_SHOW_JSON_TEXT_H
#define VGWD_SHOW_JSON_TEXT_H

// The contents as JSON in one form for each value, so that two copies can be compared byte by byte:
// indented by one blank, all but printable ASCII escaped, one newline at the end.

#include <vgwd/show/ContentSink.h>

namespace Vgwd {

class JsonText final : public ContentSink {
  public:
    JsonText() : text_("{") {}

    void begin(std::string_view name) override;
    void end() override;
    void value(std::string_view name, Cell const& cell) override;
    void list(std::string_view name, std::vector<Cell> const& cells) override;
    void pairs(std::string_view name, std::vector<CellPair> const& pairs) override;

    /// The whole text. REQUIRES: what was begun was ended.
    std::string take();

  private:
    void member(std::string_view name);
    void item();
    void close(char bracket);
    void cell(Cell const& cell);
    void string(std::string_view text);

    std::string text_;
    std::size_t depth_ = 1;
    bool empty_ = true;  // nothing yet in the innermost object or list
};

}  // namespace Vgwd

#endif
