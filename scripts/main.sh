#!/usr/bin/env bash
# The main job: install the dependencies, build Corlith (Release) and run the
# corlith tool's self-check of the archive layer.
set -euo pipefail
cd "$(dirname "$0")/.."
[ "${CORLITH_SKIP_DEPS:-0}" = 1 ] || scripts/install-deps.sh
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=Release -DCORLITH_BUILD_TESTS=OFF
cmake --build build/release
build/release/tools/corlith/corlith --version
build/release/tools/corlith/corlith self-check
