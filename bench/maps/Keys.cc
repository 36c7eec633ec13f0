#include "Keys.h"

#include <algorithm>
#include <numeric>
#include <random>

namespace Bench {

std::vector<std::string> uuids(std::size_t count, unsigned series) {
    static constexpr char const* digits = "0123456789abcdef";
    std::mt19937_64 random(series);
    std::vector<std::string> out(count);
    for (std::string& text : out) {
        text = "00000000-0000-4000-8000-000000000000";
        std::uint64_t bits = 0;
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (i % 16 == 0) {
                bits = random();
            }
            if (text[i] == '0') {
                text[i] = digits[bits & 15];
            }
            bits >>= 4;
        }
    }
    return out;
}

std::vector<std::uint32_t> numbers(std::size_t count, std::uint32_t first) {
    std::vector<std::uint32_t> out(count);
    std::iota(out.begin(), out.end(), first);
    std::shuffle(out.begin(), out.end(), std::mt19937(7));
    return out;
}

std::vector<std::uint32_t> shuffledOrder(std::size_t count) {
    std::vector<std::uint32_t> out(count);
    std::iota(out.begin(), out.end(), 0U);
    std::shuffle(out.begin(), out.end(), std::mt19937(11));
    return out;
}

}  // namespace Bench
