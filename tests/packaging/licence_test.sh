#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Checks that each source file of ROOT names its licence in one of its first two lines.
#   licence_test.sh ROOT
set -euo pipefail
cd "$1"
missing=$(git ls-files '*.cpp' '*.h' '*.mm' '*.cmake' '*.sh' '*.py' '*CMakeLists.txt' 'script/*' '.ci/*' |
    while read -r file; do
        head -n 2 "$file" | grep -q 'SPDX-License-Identifier: MIT' || echo "$file"
    done)
[ -z "$missing" ] || { echo "FAILED: no \"SPDX-License-Identifier: MIT\" in:"; echo "$missing"; exit 1; }
