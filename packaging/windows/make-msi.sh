#!/usr/bin/env bash
# make-msi.sh VERSION BUNDLE OUTPUT
# Builds the 64-bit Windows installer of a staged bundle (the Velmoran.vst3 folder) with wixl.
set -euo pipefail
version=$1 bundle=$(cd "$2" && pwd) output=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# One component per file, each with a GUID derived from its path, so every version of the
# installer gives the same file the same component.
(cd "$bundle/.." && find Velmoran.vst3 | sort |
    wixl-heat -p Velmoran.vst3/ --directory-ref BUNDLEFOLDER --component-group Bundle \
        --var var.BundleDir --win64) >"$work/bundle.wxs"
# wixl takes file sources relative to the .wxs files.
cp "$(dirname "$0")/Velmoran.wxs" "$work/"
ln -s "$bundle" "$work/Velmoran.vst3"
size_kb=$(du -sk "$bundle" | cut -f1)
wixl --arch x64 -D Version="$version" -D SizeKb="$size_kb" -D BundleDir=Velmoran.vst3 -D Win64=yes \
    -o "$output" "$work/Velmoran.wxs" "$work/bundle.wxs"
