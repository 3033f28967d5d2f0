#!/usr/bin/env bash
# The main job: installs what is missing, builds the library and its tools, and runs `orv info`.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake --preset default >/dev/null
cmake --build --preset default
./build/tools/orv info
