// SPDX-License-Identifier: MIT

#include "fuzz/input.h"
#include "fuzz/update_check_properties.h"

#include <cstddef>
#include <cstdint>

using namespace tessarel;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::require(fuzz::isReadTheSameAgain(fuzz::Input(data, size).rest()), "a feed is read the same again");
    return 0;
}
