// Files of the tree as tests of the compiler read them.
#ifndef TESTS_MODELC_TEST_FILES_H
#define TESTS_MODELC_TEST_FILES_H

#include <filesystem>
#include <string>
#include <vector>

#include <modelc/Compile.h>

namespace ModelcTest {

std::filesystem::path tree();
std::string textOf(std::filesystem::path const& path);
// The lines of a file, without their line breaks.
std::vector<std::string> linesOf(std::filesystem::path const& path);
// Compiles files below `folder`, which diagnostics call by their names below it.
Modelc::Compilation compileFiles(std::filesystem::path const& folder,
                                 std::vector<std::string> const& names);

}  // namespace ModelcTest

#endif
