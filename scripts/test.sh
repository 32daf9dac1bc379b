#!/usr/bin/env bash
# Every test: install the dependencies, check formatting, build Release and Debug
# with AddressSanitizer + UndefinedBehaviorSanitizer, run all tests in both, prove the
# installed package with a consumer project, and run each fuzzer for a bounded time.
set -euo pipefail
cd "$(dirname "$0")/.."
[ "${CORLITH_SKIP_DEPS:-0}" = 1 ] || scripts/install-deps.sh
jobs=$(nproc)
fuzz_seconds=${CORLITH_FUZZ_SECONDS:-15}
passed=0
failed=0

# Runs ctest in a build folder and adds its counts to the totals.
run_ctest() {
  local log
  log=$(mktemp)
  local status=0
  ctest --test-dir "$1" --output-on-failure -j "$jobs" 2>&1 | tee "$log" || status=$?
  local total bad
  total=$(sed -n 's/.*tests failed out of \([0-9]*\).*/\1/p' "$log" | tail -n 1)
  bad=$(sed -n 's/.* \([0-9]*\) tests failed out of.*/\1/p' "$log" | tail -n 1)
  rm -f "$log"
  passed=$((passed + ${total:-0} - ${bad:-0}))
  failed=$((failed + ${bad:-0}))
  if [ "$status" -ne 0 ] || [ -z "$total" ]; then
    echo "tests: $passed passed, $((failed > 0 ? failed : 1)) failed"
    exit 1
  fi
}

echo "== clang-format"
git ls-files '*.h' '*.cpp' | xargs clang-format --dry-run --Werror

echo "== Release"
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=Release -DCORLITH_BUILD_BENCH=ON
cmake --build build/release -j "$jobs"
run_ctest build/release

echo "== clang-tidy"
# clang-tidy is clang: it gets the compile commands without the GCC-only flags.
mkdir -p build/tidy
sed 's/ -fno-gnu-unique//g' build/release/compile_commands.json >build/tidy/compile_commands.json
tidy_status=0
git ls-files 'src/*.cpp' 'tools/*.cpp' | xargs clang-tidy -p build/tidy --quiet >build/tidy.log 2>&1 || tidy_status=$?
grep -v 'warnings generated' build/tidy.log || true
if [ "$tidy_status" -ne 0 ]; then
  echo "tests: $passed passed, 1 failed"
  exit 1
fi

echo "== install + consumer project"
rm -rf build/stage build/consumer
cmake --install build/release --prefix build/stage >/dev/null
cmake -S tests/consumer -B build/consumer -G Ninja -DCMAKE_PREFIX_PATH="$PWD/build/stage"
cmake --build build/consumer
LD_LIBRARY_PATH="$PWD/build/stage/lib" build/consumer/consumer
PKG_CONFIG_PATH="$PWD/build/stage/lib/pkgconfig" pkg-config --modversion corlith

echo "== Debug + address,undefined"
cmake -S . -B build/asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCORLITH_SANITIZE=address,undefined
cmake --build build/asan -j "$jobs"
ASAN_OPTIONS=detect_leaks=1 run_ctest build/asan

echo "== fuzzers (${fuzz_seconds}s each)"
CXX=clang++ cmake -S . -B build/fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DCORLITH_BUILD_FUZZ=ON -DCORLITH_BUILD_TESTS=OFF -DCORLITH_BUILD_TOOLS=OFF
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
    echo "tests: $passed passed, 1 failed"
    exit 1
  fi
done

echo "tests: $passed passed, $failed failed"
