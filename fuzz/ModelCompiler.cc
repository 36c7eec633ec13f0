// Any text, given to the compiler of descriptions: it comes back with errors or with files, never
// with both, and twice the same.
#include <fuzz/FuzzInput.h>
#include <modelc/Compile.h>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Modelc::Compilation const once = Modelc::compile(textOf(data, size));
    Modelc::Compilation const again = Modelc::compile(textOf(data, size));
    must(once.errors.empty() || once.files.empty());
    must(once.errors == again.errors && once.files.size() == again.files.size());
    return 0;
}
