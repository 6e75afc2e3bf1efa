#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Checks that docs/licences.md names every library that the programs link.
#   licences_test.sh ROOT PROGRAM...
set -euo pipefail
root=$1
shift
failed=0
for library in $(readelf --dynamic --wide "$@" | sed -n 's/.*NEEDED.*\[\(lib[^]]*\)\.so.*/\1/p' | sort -u); do
    case $library in
    libc | libm | libgcc_s) continue ;; # the C runtime
    esac
    grep -qF "\`$library\`" "$root/docs/licences.md" || { echo "FAILED: docs/licences.md lacks $library"; failed=1; }
done
exit "$failed"
