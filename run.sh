#!/usr/bin/env bash
# Builds the module and its simulated host and opens the "ETM Control" dialog on a
# simulated chip. Without a screen it takes the tour instead: the dialog is driven
# off-screen, each tab is photographed, and the conversation with the host printed.
#
#   ./run.sh                      the Cortex-M3
#   ./run.sh --chip arm926        another chip; see build/release/bin/etmhost chips
set -euo pipefail
cd "$(dirname "$0")"
. tools/packages.sh
tools/install-packages "${BUILD_PACKAGES[@]}"

cmake --preset release >/dev/null
cmake --build --preset release -- --quiet

host=build/release/bin/etmhost
chip=(--chip cortex-m3)
case " $* " in *" --chip"*) chip=() ;; esac
if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  exec "$host" "${chip[@]}" "$@" --journal open
fi
pictures=build/tour
mkdir -p "$pictures"
"$host" "${chip[@]}" "$@" --journal tour "$pictures"
echo
echo "There is no screen here, so the dialog was driven off-screen."
echo "Its pictures are in $pictures:"
ls "$pictures"
