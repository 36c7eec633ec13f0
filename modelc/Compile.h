// Descriptions -> files of C++.
//
// compile() takes any bytes: it neither throws nor crashes, its depth is bounded and its time is
// linear in the text. What is wrong comes back as lines `FILE:LINE:COLUMN: error: WHAT; expected
// WHAT`, all of them, in order; there are files only if there are no such lines. The same
// descriptions give the same files, on every machine and in every folder.
#ifndef MODELC_COMPILE_H
#define MODELC_COMPILE_H

#include <string>
#include <string_view>
#include <vector>

#include <modelc/check/Sources.h>
#include <modelc/emit/OutputFile.h>

namespace Modelc {

struct Description {
    std::string name;  // as diagnostics call it
    std::string text;
};

struct Compilation {
    std::vector<std::string> errors;
    std::vector<OutputFile> files;
    std::string registrations;  // the rows of the type registry, as text
};

Compilation compile(std::vector<Description> const& descriptions, ImportReader const& reader);

// One description that imports nothing.
Compilation compile(std::string_view text, std::string_view name = "input.model");

}  // namespace Modelc

#endif
