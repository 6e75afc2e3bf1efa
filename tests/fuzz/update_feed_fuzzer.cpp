#include "update_check_properties.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (!tessarel::fuzz::isReadTheSameAgain(std::string(data, data + size)))
        std::abort();
    return 0;
}
