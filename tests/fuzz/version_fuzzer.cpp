// SPDX-License-Identifier: MIT

#include "fuzz/input.h"
#include "fuzz/update_check_properties.h"

#include <cstddef>
#include <cstdint>
#include <string>

using namespace tessarel;

/// Reads two versions from the first two lines and a third one from the rest of the input.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    const std::string a = input.until('\n');
    const std::string b = input.until('\n');
    fuzz::require(fuzz::areInAnOrder(a, b, input.rest()), "versions are ordered consistently");
    return 0;
}
