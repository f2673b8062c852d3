#!/usr/bin/env bash
# Installs every Debian package that the build, the tests and the benchmarks need.
# Quiet and quick when everything is already there: apt is only called for what is missing.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config ccache
  g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64 mingw-w64-tools
  wine wine64 xvfb xauth libgl1-mesa-dri mesa-utils
  libx11-dev libxtst-dev libgl-dev libglx-dev
  googletest libgtest-dev libbenchmark-dev
  juce-modules-source-data
  python3 librsvg2-bin libfreetype-dev
  libsndfile1-dev gnuplot-nox
  clang-14 libclang-rt-14-dev
  fonts-dejavu-core fonts-play fonts-routed-gothic fonts-liberation
  wixl lintian dpkg-dev fakeroot zip
)

missing=()
for package in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$package")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "Installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then sudo_cmd=(sudo); fi
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
