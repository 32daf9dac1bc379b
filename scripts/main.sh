#!/usr/bin/env bash
# The main job: install the dependencies, build the library and the corlith tool
# (Release, in build/release) and run the tool's self-check of the archive layer.
# Every build option is set here, so a folder configured earlier by scripts/test.sh
# (or by hand) is put back to this job's configuration.
set -euo pipefail
cd "$(dirname "$0")/.."
[ "${CORLITH_SKIP_DEPS:-0}" = 1 ] || scripts/install-deps.sh

cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=Release \
  -DCORLITH_BUILD_TESTS=OFF -DCORLITH_BUILD_TOOLS=ON -DCORLITH_BUILD_UI=ON -DCORLITH_BUILD_BENCH=OFF \
  -DCORLITH_BUILD_FUZZ=OFF -DCORLITH_SANITIZE= -DCORLITH_WERROR=ON
cmake --build build/release -j "$(nproc)"
build/release/tools/corlith/corlith --version
build/release/tools/corlith/corlith self-check
