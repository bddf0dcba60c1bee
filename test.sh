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

# What a copy of the repository has compiled once is taken from the cache in another one.
export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache
export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1 CCACHE_DEPEND=1
export CCACHE_SLOPPINESS=include_file_mtime,include_file_ctime # the sources of a fresh clone are new

# Tests mostly wait, and run beside what computes, which gives way to them. begin starts a function,
# finish waits for it, shows what it printed, and fails if it failed. What has deadlines to keep is
# begun in_turn: as soon as nothing else of that kind runs.
mkdir -p build/beside
declare -A beside
begin() {
  "${@:2}" >"build/beside/$1.txt" 2>&1 &
  beside[$1]=$!
}
in_turn() { { flock 9; "$@" 9>&-; } 9>build/beside/lock; }
finish() {
  local status=0
  wait "${beside[$1]}" || status=$?
  stage "$1"
  cat "build/beside/$1.txt"
  [ "$status" = 0 ] || { echo "$1: failed"; exit 1; }
}
# shellcheck disable=SC2046 # one word for each
trap 'kill $(jobs -p) 2>/dev/null || true' EXIT

configure() {
  cmake --preset dev >/dev/null
  cmake --preset asan >/dev/null
}
begin "g++ and clang++: configuration" configure

stage "format and rooms"
git ls-files '*.c' '*.cpp' '*.h' | xargs -r clang-format --dry-run -Werror
tools/check-rooms

stage "the documents' links and quotations, the reference pages"
tools/check-links
tools/user-guide --check
tools/reference

stage "scripts"
git grep -lE '^#!.*\b(ba)?sh\b|^# shellcheck ' -- . ':!*.py' | xargs -r shellcheck

finish "g++ and clang++: configuration"
stage "g++: build"
cmake --build --preset dev -- --quiet

# Runs the tests of a build. One that is skipped, for want of a program, has failed.
run_tests() {
  ctest --test-dir "$1" --output-on-failure -j2 | tee "$1/tests.txt"
  ! grep -q 'Skipped' "$1/tests.txt" || { echo "tests were skipped"; return 1; }
}

test_dev() {
  run_tests build/dev
  echo "The road to a real debug server, in one command:"
  tools/openocd-road build/dev/bin/etmhost openocd --journal tour build/dev/road
  echo "What comes out of a trace port, to a decoder:"
  tests/decoder_road.py build/dev/decoder
  echo "Real windows on a virtual X server:"
  # A server that starts anew with each last client refuses the next one meanwhile.
  QT_QPA_PLATFORM=xcb QT_LOGGING_RULES=default.warning=false timeout 300 \
    xvfb-run -a -s "-screen 0 1280x1024x24 -noreset" build/dev/bin/module_tests --gtest_brief=1
  echo "The jobs there, by the keyboard alone:"
  QT_QPA_PLATFORM=xcb QT_LOGGING_RULES=default.warning=false timeout 300 \
    xvfb-run -a -s "-screen 0 1280x1024x24 -noreset" tools/jobs
  echo "And over the accessibility bus:"
  tools/screen-reader
  echo "Hosts in other languages, and with another C++ library:"
  tests/example_hosts.py build/dev/bin
  echo "What is installed, and a first host with it:"
  tools/package-test
}
begin "g++: tests" in_turn test_dev

# Ahead of the sanitizers: these tests wait most, and need something to wait beside.
stage "Windows: build"
[ "$windows" = no ] || nice tools/windows-tests --build

test_windows() {
  if [ "$windows" = yes ]; then
    tools/windows-tests
  else
    echo "Windows checks: not run: left out by --no-windows"
  fi
}
begin "Windows: tests" in_turn test_windows

test_documents() {
  tools/check-listings
  tools/pictures --check
}
begin "the documents' listings and pictures" test_documents

stage "clang++ with AddressSanitizer and UBSan: build"
nice cmake --build --preset asan -- --quiet

test_asan() {
  ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1:quarantine_size_mb=32 UBSAN_OPTIONS=print_stacktrace=1 \
    LSAN_OPTIONS=suppressions=$PWD/tests/lsan.supp:print_suppressions=0 \
    run_tests build/asan
}
begin "AddressSanitizer and UBSan: tests" in_turn test_asan

stage "public headers"
nice tools/check-headers

stage "fuzz: a few seconds each"
fuzz() {
  local name corpus
  name=$(basename "$1")
  corpus=("build/asan/corpus/$name") # receives what is new
  mkdir -p "${corpus[0]}"
  [ ! -d "fuzz/corpus/$name" ] || corpus+=("fuzz/corpus/$name")
  # Without the search for rare features, which pays in long runs, the slow ones try more inputs.
  "$1" -max_total_time=3 -entropic=0 -timeout=10 -verbosity=0 -print_final_stats=1 \
    -artifact_prefix="build/asan/$name-" "${corpus[@]}" >"build/asan/$name.txt" 2>&1 ||
    { cat "build/asan/$name.txt"; echo "$name failed"; exit 1; }
  echo "$name: $(sed -n 's/^stat::number_of_executed_units: *//p' "build/asan/$name.txt") inputs"
}
export -f fuzz
# shellcheck disable=SC2016 # the inner shell expands it
printf '%s\n' build/asan/bin/fuzz_* | nice xargs -P "$(nproc)" -I{} bash -euo pipefail -c 'fuzz "$1"' - {}

stage "clang-tidy"
nice tools/tidy "${tidy[@]}"

finish "g++: tests"
finish "Windows: tests"
finish "the documents' listings and pictures"
finish "AddressSanitizer and UBSan: tests"

stage "done"
echo "All checks passed."
