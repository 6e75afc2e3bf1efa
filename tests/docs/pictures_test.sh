#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Checks that the pictures in the documents were made from the present sources of what they show.
#   pictures_test.sh ROOT
set -euo pipefail
cd "$1"
[ "$(demo/inputs.sh)" = "$(cat docs/screenshots/inputs.sha256)" ] || {
    echo "FAILED: what the pictures show has changed since they were made; run script/demo --pictures"
    exit 1
}
