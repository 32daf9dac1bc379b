#!/usr/bin/env bash
# Installs the Debian 12 packages Corlith needs to build, test and fuzz, and those the
# environment and services layers are about to need. Installs only what is missing, so
# running it again is quick and needs no network.
set -euo pipefail

packages=(
  # compilers and build tools
  build-essential cmake ninja-build pkg-config git
  # clang for the fuzzers (libclang-rt: libFuzzer and FuzzedDataProvider.h), formatting, lint
  clang libclang-rt-14-dev clang-format clang-tidy
  # libraries
  libssl-dev libcurl4-openssl-dev libzip-dev libfontconfig-dev
  # the reference FFT solver (KissFFT's C++ header)
  libkissfft-dev
  # the corlith tool
  libcli11-dev nlohmann-json3-dev
  # tests and benchmarks
  libgtest-dev libgmock-dev libbenchmark-dev fonts-dejavu-core
  # programs the environment layer runs: archivers, the desktop opener, code signing
  zip unzip p7zip xdg-utils osslsigncode
  # OpenGL for the services layer's exclusive-or drawing; EGL and Mesa's drivers for its
  # headless test context
  libopengl-dev libegl-dev libgl1-mesa-dri libegl-mesa0
  # the user-interface library: wxWidgets on GTK 3 (GDK's X11 calls for the progress
  # helper), libGL for window capture
  libwxgtk3.2-dev libgtk-3-dev libgl-dev libxlsxwriter-dev
  # its tests: a private X server per test, window search, screenshots, the clipboard
  xvfb xauth xdotool imagemagick xclip python3-openpyxl
  # printed pages rasterised (ps2pdf, pdftoppm); libjpeg-turbo as the image benchmark's peer
  ghostscript poppler-utils libjpeg62-turbo-dev
)

missing=()
for package in "${packages[@]}"; do
  if [ "$(dpkg-query -W -f='${db:Status-Abbrev}' "$package" 2>/dev/null)" != "ii " ]; then
    missing+=("$package")
  fi
done
if [ ${#missing[@]} -eq 0 ]; then
  echo "install-deps: all ${#packages[@]} packages are installed"
  exit 0
fi

sudo=()
if [ "$(id -u)" != 0 ]; then
  if ! command -v sudo >/dev/null; then
    echo "install-deps: run as root, or install sudo, to install: ${missing[*]}" >&2
    exit 1
  fi
  sudo=(sudo)
fi
echo "install-deps: installing ${missing[*]}"
"${sudo[@]}" apt-get update -qq
"${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
