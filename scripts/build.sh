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

# The downloads of a release: the Windows installer and the Debian package (installed above from
# the two builds), the bundle with both modules as a zip for other systems, and their checksums.
version=$(sed -n 's/^#define VELMORAN_VERSION "\(.*\)"$/\1/p' plugin/Version.h)
(
    cd dist
    zip -qrX "Velmoran-$version.vst3.zip" Velmoran.vst3
    sha256sum "Velmoran-$version-x64.msi" "velmoran-vst3_${version}_amd64.deb" "Velmoran-$version.vst3.zip" >SHA256SUMS
)
build/linux/tools/design-deviation/velmoran-design-deviation >dist/filter-deviation.txt

# The demo: a generated mix through every factory program, each with its response plot.
render=dist/bin/velmoran-render
mkdir -p dist/demo
"$render" --quiet --demo-signal dist/demo/demo-input.wav
"$render" --list-presets | sed -n 's/^  \([0-9]*\)  "\([^"]*\)".*/\1 \2/p' |
    while read -r number name; do
        slug=$(tr 'A-Z' 'a-z' <<<"$name" | sed -E 's/^[0-9]+ - //; s/[^a-z0-9]+/-/g')
        "$render" --quiet --preset "$number" --response "dist/demo/$number-$slug.png" \
            dist/demo/demo-input.wav "dist/demo/$number-$slug.wav"
    done

# The first picture of the graphics platform: one frame drawn by the OpenGL renderer in a window of
# the window kit, run under Wine on a virtual display.
build/windows/wine-run.sh build/windows/tools/gl_snapshot/velmoran-gl-snapshot.exe dist/velmoran-gl-snapshot.png

# The editor as a user sees it, opened by the editor test host as a DAW opens it, with the demo
# mix playing: the first look (the default program), a program with the live spectrum, a zoomed
# and panned graph, a band's menu, a band's info box during a drag, and the view at a display scale
# of 1.5 as a host gives it on a high-density screen; a program with bands off and one switched back
# on by a Control-click; the output gain raised by its marker. Positions are editor pixels.
editor_host() {
    build/windows/wine-run.sh build/windows/tools/editor_host/velmoran-editor-host.exe \
        build/windows/plugin/Velmoran.vst3 "$@" >/dev/null
}
editor_host dist/editor.png --seconds 1
editor_host dist/editor-nv3-spectrum.png --preset 3 --set 14=1 --seconds 3
editor_host dist/editor-zoomed.png --preset 3 --set 14=1 --seconds 2 \
    --gesture wheel:500,380,6 --gesture wheel:300,200,3
editor_host dist/editor-band-menu.png --preset 1 --seconds 1 --gesture right-click:637,234
editor_host dist/editor-info-box.png --preset 1 --seconds 1 --gesture drag:637,234,660,215
editor_host dist/editor-scale-150.png --preset 3 --set 14=1 --seconds 2 --scale 1.5
editor_host dist/editor-band-off.png --preset 3 --seconds 1 --gesture ctrl-click:396,235
editor_host dist/editor-output-gain.png --preset 1 --seconds 1 --gesture drag:927,288,927,250
build/windows/wine-run.sh --remove-prefix

# The same editor in a Linux host: the Linux module's editor embedded by XEmbed into the Linux
# editor test host's window on a virtual display, drawn by Mesa's software rasteriser.
editor_host_linux() {
    LIBGL_ALWAYS_SOFTWARE=1 xvfb-run -a -s "-screen 0 1280x1024x24 -noreset" \
        build/linux/tools/editor_host/velmoran-editor-host build/linux/plugin/Velmoran.so "$@" >/dev/null
}
editor_host_linux dist/editor-linux.png --seconds 1
editor_host_linux dist/editor-linux-nv3-spectrum.png --preset 3 --set 14=1 --seconds 3
echo "Built into $(pwd)/dist:"
find dist -maxdepth 4 | sort
