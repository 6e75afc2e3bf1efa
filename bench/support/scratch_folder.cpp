#include "support/scratch_folder.h"

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <system_error>

namespace tessarel::bench {

ScratchFolder::ScratchFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "tessarel-bench-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr)
        throw std::runtime_error("no folder " + name);
    m_path = name;
}

ScratchFolder::~ScratchFolder() {
    std::error_code failure;
    std::filesystem::remove_all(m_path, failure);
}

} // namespace tessarel::bench
