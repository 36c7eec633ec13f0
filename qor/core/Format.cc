#include <qor/core/Format.h>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <string>

namespace Qor {

String8 format(char const* pattern, ...) {
    std::array<char, 256> small;
    std::va_list arguments;
    va_start(arguments, pattern);
    std::va_list again;
    va_copy(again, arguments);
    int const length = std::vsnprintf(small.data(), small.size(), pattern, arguments);
    va_end(arguments);
    String8 text;
    if (length > 0) {
        auto const size = static_cast<std::size_t>(length);
        if (size < small.size()) {
            text = String8(std::string_view(small.data(), size));
        } else {
            std::string large(size, '\0');
            std::vsnprintf(large.data(), size + 1, pattern, again);
            text = String8(std::string_view(large));
        }
    }
    va_end(again);
    return text;
}

}  // namespace Qor
