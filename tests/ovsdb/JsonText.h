#ifndef TESTS_OVSDB_JSON_TEXT_H
#define TESTS_OVSDB_JSON_TEXT_H

// A JSON text that owns what its elements refer to.

#include <simdjson.h>

#include <string_view>

namespace Ovsdb {

class JsonText {
  public:
    explicit JsonText(std::string_view text)
        : root_(parser_.parse(text.data(), text.size()).value()) {}

    simdjson::dom::element root() const { return root_; }

  private:
    simdjson::dom::parser parser_;
    simdjson::dom::element root_;
};

}  // namespace Ovsdb

#endif
