#!/usr/bin/env bash
# Installs everything Corlith needs to build and test on Debian 12.
set -euo pipefail
SUDO=""
if [ "$(id -u)" != 0 ]; then SUDO="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends \
  build-essential cmake ninja-build pkg-config git \
  clang clang-format clang-tidy libclang-rt-14-dev \
  libgtest-dev libgmock-dev libbenchmark-dev \
  libcli11-dev nlohmann-json3-dev libssl-dev >/dev/null
