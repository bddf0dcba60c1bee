#!/usr/bin/env bash
# Builds the module and its simulated host and opens the "ETM Control" dialog on a
# simulated chip. Without a screen it takes the tour instead: the dialog is driven
# off-screen, each tab is photographed, and the conversation with the host printed.
#
#   ./run.sh                      the Cortex-M3
#   ./run.sh --chip arm926        another chip; see build/release/bin/etmhost chips
#   ./run.sh --remote openocd     a simulated Cortex-M4 behind a real OpenOCD, its trace registers
#                                 printed before and after
#   ./run.sh --remote openocd:PORT   the chip of an OpenOCD that runs, by its Tcl port
set -euo pipefail
cd "$(dirname "$0")"
. tools/packages.sh
tools/install-packages "${BUILD_PACKAGES[@]}"

cmake --preset release >/dev/null
cmake --build --preset release -- --quiet

host=build/release/bin/etmhost
arguments=()
remote=
while [ $# -gt 0 ]; do
  case "$1" in
    --remote) remote=${2:?--remote takes a server}; shift 2 ;;
    --remote=*) remote=${1#--remote=}; shift ;;
    *) arguments+=("$1"); shift ;;
  esac
done
# With a screen the dialog opens, without one it takes its tour.
pictures=build/tour
if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  command=(--journal open)
else
  mkdir -p "$pictures"
  command=(--journal tour "$pictures")
fi
case "$remote" in
  openocd | openocd:*)
    [ "$remote" != openocd ] || tools/install-packages "${REMOTE_PACKAGES[@]}"
    tools/openocd-road "$host" "$remote" "${arguments[@]}" "${command[@]}"
    ;;
  "")
    case " ${arguments[*]} " in *" --chip"*) ;; *) arguments+=(--chip cortex-m3) ;; esac
    "$host" "${arguments[@]}" "${command[@]}"
    ;;
  *) "$host" --remote "$remote" "${arguments[@]}" "${command[@]}" ;;
esac
if [ "${command[1]}" = tour ]; then
  echo
  echo "There is no screen here, so the dialog was driven off-screen."
  echo "Its pictures are in $pictures:"
  ls "$pictures"
fi
