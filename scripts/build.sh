#!/usr/bin/env bash
# The main job: builds the Linux and Windows targets and collects the product in dist/.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/setup.sh
rm -rf dist
for preset in linux windows; do
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset"
    cmake --install "build/$preset" --prefix dist >/dev/null
done
mkdir -p dist
build/linux/tools/design-deviation/velmoran-design-deviation >dist/filter-deviation.txt
# The first picture of the graphics platform: one frame drawn by the OpenGL renderer in a window of
# the window kit, run under Wine on a virtual display.
build/windows/wine-run.sh build/windows/tools/gl_snapshot/velmoran-gl-snapshot.exe dist/velmoran-gl-snapshot.png
build/windows/wine-run.sh --remove-prefix
echo "Built into $(pwd)/dist:"
find dist -maxdepth 4 | sort
