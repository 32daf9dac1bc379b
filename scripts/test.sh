#!/usr/bin/env bash
# Every test: install the dependencies, check formatting, build Release and run all
# tests, lint, prove the installed package (a consumer project and the installed tool),
# Corlith built as a host's subproject and a configure without clang's fuzzer header,
# build Debug with AddressSanitizer + UndefinedBehaviorSanitizer and run all tests
# again, and run each fuzzer for a bounded time. Every configure sets every option it
# relies on, so folders left by scripts/main.sh or an earlier run are put back to this
# script's configuration. The last line is always `tests: N passed, N failed` (the
# ctest tests and this script's own checks); any failure exits non-zero.
set -euo pipefail
cd "$(dirname "$0")/.."
jobs=$(nproc)
fuzz_seconds=${CORLITH_FUZZ_SECONDS:-7}
passed=0
failed=0

# Whatever stops the script, the summary is its last line; a step that stopped it
# without counting a failure (a build error, say) counts as one.
finish() {
  local status=$?
  if [ "$status" -ne 0 ] && [ "$failed" -eq 0 ]; then
    failed=1
  fi
  echo "(took ${SECONDS} s)"
  echo "tests: $passed passed, $failed failed"
  if [ "$failed" -ne 0 ]; then
    exit 1
  fi
}
trap finish EXIT

# Stops the script with one failure and a reason.
fail() {
  echo "FAILED: $*"
  exit 1
}

# Starts a step, saying how long the script has run so far.
step() {
  echo "== $* (at ${SECONDS} s)"
}

# Counts a check of this script (not a ctest test) that passed.
pass() {
  passed=$((passed + 1))
}

# Runs ctest in a build folder and adds its counts to the totals; a folder with no
# tests is a failure, not a pass.
run_ctest() {
  local log status=0 total bad
  log=$(mktemp)
  ctest --test-dir "$1" --output-on-failure -j "$jobs" 2>&1 | tee "$log" || status=$?
  total=$(sed -n 's/.*tests failed out of \([0-9]*\).*/\1/p' "$log" | tail -n 1)
  bad=$(sed -n 's/.* \([0-9]*\) tests failed out of.*/\1/p' "$log" | tail -n 1)
  rm -f "$log"
  passed=$((passed + ${total:-0} - ${bad:-0}))
  failed=$((failed + ${bad:-0}))
  if [ -z "$total" ]; then
    fail "no tests ran in $1"
  fi
  if [ "$status" -ne 0 ]; then
    exit 1
  fi
}

[ "${CORLITH_SKIP_DEPS:-0}" = 1 ] || scripts/install-deps.sh

step "clang-format"
git ls-files '*.h' '*.cpp' | xargs clang-format --dry-run --Werror
pass

step "Release"
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=Release \
  -DCORLITH_BUILD_TESTS=ON -DCORLITH_BUILD_TOOLS=ON -DCORLITH_BUILD_UI=ON -DCORLITH_BUILD_BENCH=ON \
  -DCORLITH_BUILD_FUZZ=OFF -DCORLITH_SANITIZE= -DCORLITH_WERROR=ON
cmake --build build/release -j "$jobs"
run_ctest build/release

step "clang-tidy"
# clang-tidy is clang: it gets the compile commands without the GCC-only flags.
mkdir -p build/tidy
sed 's/ -fno-gnu-unique//g; s/ -Wno-restrict//g' build/release/compile_commands.json >build/tidy/compile_commands.json
tidy_status=0
git ls-files 'src/*.cpp' 'tools/*.cpp' |
  xargs -P "$jobs" -n 4 clang-tidy -p build/tidy --quiet >build/tidy.log 2>&1 || tidy_status=$?
grep -v 'warnings generated' build/tidy.log || true
[ "$tidy_status" -eq 0 ] || fail "clang-tidy"
pass

step "install: consumer project, installed tool"
# Nothing below may find the library through the environment: the installed tool finds
# it through its relative run path, the consumer through the path CMake links it with.
unset LD_LIBRARY_PATH
stage="$PWD/build/stage"
libdir=$(sed -n 's/^CMAKE_INSTALL_LIBDIR:PATH=//p' build/release/CMakeCache.txt)
rm -rf "$stage" build/consumer
cmake --install build/release --prefix "$stage" >/dev/null
cmake -S tests/consumer -B build/consumer -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_PREFIX_PATH="$stage"
cmake --build build/consumer
build/consumer/consumer
# The user-interface library through the CMake package and through pkg-config, and the
# installed gallery (listing its windows needs no display).
build/consumer/consumer_ui
build/consumer/consumer_ui_pkgconfig
"$stage/bin/corlith-gallery" --list >/dev/null
PKG_CONFIG_PATH="$stage/$libdir/pkgconfig" pkg-config --modversion corlith
pass
# Every Corlith library the tool loads (the core, and the UI library when it was built)
# must come from the installed tree.
loaded=$(ldd "$stage/bin/corlith" | sed -n 's/.*libcorlith[^ ]* => \(.*\) (0x.*/\1/p')
[ -n "$loaded" ] || fail "the installed corlith does not load the installed library: not found"
while IFS= read -r lib; do
  if [ "$(dirname "$(realpath "$lib")")" != "$(realpath "$stage/$libdir")" ]; then
    fail "the installed corlith does not load the installed library: $lib"
  fi
done <<<"$loaded"
"$stage/bin/corlith" --version
"$stage/bin/corlith" self-check
pass

step "Corlith as a host's subproject"
# No build type, as many hosts configure: the configure itself checks that Corlith
# imposed nothing on the host.
rm -rf build/subproject
cmake -S tests/subproject -B build/subproject -G Ninja
cmake --build build/subproject -j "$jobs" --target host
build/subproject/host
pass

step "configure without clang's fuzzer header"
# As on a machine without clang: the header's folders are hidden from the search, and
# the configure still succeeds, replays the fuzz targets that do not need it and says
# which it skipped.
rm -rf build/no-fuzz-header
provider_dirs=(/usr/lib/llvm-*/lib/clang/*/include)
hidden=$(IFS=";" && echo "${provider_dirs[*]}")
cmake -S . -B build/no-fuzz-header -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_IGNORE_PATH="$hidden" \
  -DCORLITH_BUILD_TESTS=ON -DCORLITH_BUILD_TOOLS=OFF -DCORLITH_BUILD_UI=OFF -DCORLITH_BUILD_BENCH=OFF \
  -DCORLITH_BUILD_FUZZ=OFF -DCORLITH_SANITIZE= -DCORLITH_WERROR=ON >build/no-fuzz-header.log 2>&1 ||
  { cat build/no-fuzz-header.log; fail "configure without clang's fuzzer header"; }
grep -q 'FuzzedDataProvider.h was not found' build/no-fuzz-header.log ||
  fail "the configure without clang's fuzzer header did not say what it skipped"
replays=$(ctest --test-dir build/no-fuzz-header -N)
[[ "$replays" == *fuzz_replay.* ]] ||
  fail "the configure without clang's fuzzer header dropped every corpus replay"
pass

step "Debug + address,undefined"
cmake -S . -B build/asan -G Ninja -DCMAKE_BUILD_TYPE=Debug \
  -DCORLITH_BUILD_TESTS=ON -DCORLITH_BUILD_TOOLS=ON -DCORLITH_BUILD_UI=ON -DCORLITH_BUILD_BENCH=OFF \
  -DCORLITH_BUILD_FUZZ=OFF -DCORLITH_SANITIZE=address,undefined -DCORLITH_WERROR=ON
cmake --build build/asan -j "$jobs"
ASAN_OPTIONS=detect_leaks=1 run_ctest build/asan

step "fuzzers (${fuzz_seconds}s each)"
cmake -S . -B build/fuzz -G Ninja -DCMAKE_CXX_COMPILER="$(command -v clang++)" \
  -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DCORLITH_BUILD_TESTS=OFF -DCORLITH_BUILD_TOOLS=OFF -DCORLITH_BUILD_UI=OFF -DCORLITH_BUILD_BENCH=OFF \
  -DCORLITH_BUILD_FUZZ=ON -DCORLITH_SANITIZE=address,undefined -DCORLITH_WERROR=ON
cmake --build build/fuzz -j "$jobs"
for source in fuzz/*Fuzz.cpp; do
  target=$(basename "$source" .cpp)
  work="build/fuzz/corpus-$target"
  mkdir -p "$work"
  status=0
  build/fuzz/fuzz/"$target" -max_total_time="$fuzz_seconds" -rss_limit_mb=2048 -print_final_stats=1 \
    "$work" "fuzz/corpus/$target" >"$work.log" 2>&1 || status=$?
  echo "$target: $(grep -E '^stat::number_of_executed_units' "$work.log" || echo 'no stats')"
  if [ "$status" -ne 0 ]; then
    tail -n 40 "$work.log"
    fail "fuzzer $target"
  fi
  pass
done
