// The page that tells the attribute log's bytes, for tests that hold it against real ones.
#ifndef TESTS_SUPPORT_DOCUMENTATION_H
#define TESTS_SUPPORT_DOCUMENTATION_H

#include <fstream>
#include <sstream>
#include <string>

/// `top` is the folder of the project.
inline std::string attributeLogPage(std::string const& top) {
    std::ifstream file(top + "/docs/attribute-log.md");
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

#endif
