#include "update_check_properties.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

/// Reads two versions from the first two lines and a third one from the rest of the input.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::uint8_t* const end = data + size;
    const auto takeLine = [&] {
        const std::uint8_t* const lineEnd = std::find(data, end, '\n');
        std::string line(data, lineEnd);
        data = lineEnd == end ? end : lineEnd + 1;
        return line;
    };
    const std::string a = takeLine();
    const std::string b = takeLine();
    if (!tessarel::fuzz::areInAnOrder(a, b, std::string(data, end)))
        std::abort();
    return 0;
}
