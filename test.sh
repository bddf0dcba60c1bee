#!/usr/bin/env bash
# Installs what is missing, builds, and runs every check. Ends with status 0 only
# if all of them passed.
#
#   ./test.sh                 everything
#   ./test.sh --no-windows    without the Windows module, for quick rounds
#   ./test.sh --tidy-all      with clang-tidy on all sources, not on what has changed alone
set -euo pipefail
cd "$(dirname "$0")"

windows=yes
tidy=()
for argument in "$@"; do
  case "$argument" in
    --no-windows) windows=no ;;
    --tidy-all) tidy=(--all) ;;
    *) echo "usage: ./test.sh [--no-windows] [--tidy-all]" >&2; exit 2 ;;
  esac
done

stage() { printf '\n== %s (%s s)\n' "$1" "$SECONDS"; }

stage "packages"
. tools/packages.sh
tools/install-packages "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}" "${BENCH_PACKAGES[@]}"

stage "format and rooms"
git ls-files '*.cpp' '*.h' | xargs -r clang-format --dry-run -Werror
tools/check-rooms

stage "scripts"
git grep -lE '^#!.*\b(ba)?sh\b|^# shellcheck ' -- . ':!*.py' | xargs -r shellcheck

stage "g++: build and test"
cmake --preset dev >/dev/null
cmake --build --preset dev -- --quiet
ctest --test-dir build/dev --output-on-failure -j2

stage "clang-tidy"
tools/tidy "${tidy[@]}"

stage "the documents' listings"
tools/check-listings

stage "real windows on a virtual X server"
QT_QPA_PLATFORM=xcb QT_LOGGING_RULES=default.warning=false timeout 300 \
  xvfb-run -a build/dev/bin/module_tests --gtest_brief=1

stage "clang++ with AddressSanitizer and UBSan: build and test"
cmake --preset asan >/dev/null
cmake --build --preset asan -- --quiet
ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1 UBSAN_OPTIONS=print_stacktrace=1 \
LSAN_OPTIONS=suppressions=$PWD/tests/lsan.supp:print_suppressions=0 \
  ctest --test-dir build/asan --output-on-failure -j2

stage "fuzz: a few seconds each"
for target in build/asan/bin/fuzz_*; do
  name=$(basename "$target")
  corpus=("build/asan/corpus/$name") # receives what is new
  mkdir -p "${corpus[0]}"
  [ ! -d "fuzz/corpus/$name" ] || corpus+=("fuzz/corpus/$name")
  "$target" -max_total_time=4 -timeout=10 -verbosity=0 -print_final_stats=1 \
    "${corpus[@]}" >build/asan/fuzz_log.txt 2>&1 ||
    { cat build/asan/fuzz_log.txt; echo "$name failed"; exit 1; }
  echo "$name: $(sed -n 's/^stat::number_of_executed_units: *//p' build/asan/fuzz_log.txt) inputs"
done

stage "Windows"
if [ "$windows" = yes ]; then
  tools/windows-tests
else
  echo "Windows checks: not run: left out by --no-windows"
fi

stage "done"
echo "All checks passed."
