#!/usr/bin/env bash
# make-deb.sh VERSION BUNDLE OUTPUT
# Builds the Debian package of a staged bundle (the Velmoran.vst3 folder) with dpkg-deb. Its
# dependencies are worked out from the libraries the bundle's modules need, so they follow the
# modules as they change.
set -euo pipefail
version=$1 bundle=$(cd "$2" && pwd) output=$3
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

root=$work/root
doc=$root/usr/share/doc/velmoran-vst3
install -d -m755 "$root/DEBIAN" "$root/usr/lib/vst3" "$doc"
cp -r "$bundle" "$root/usr/lib/vst3/"
install -m644 "$here/copyright" "$doc/copyright"
sed "s/@VERSION@/$version/" "$here/changelog.in" | gzip -9n >"$doc/changelog.gz"
find "$root" -type d -exec chmod 755 {} + && find "$root" -type f -exec chmod 644 {} +

# dpkg-shlibdeps wants a source package around the modules it reads.
mkdir "$work/debian"
printf 'Source: velmoran\n\nPackage: velmoran-vst3\nArchitecture: amd64\n' >"$work/debian/control"
depends=$(cd "$work" && find root/usr/lib/vst3 -name '*.so' -exec dpkg-shlibdeps -O {} + |
    sed -n 's/^shlibs:Depends=//p')
installed_size=$(du -sk --exclude=DEBIAN "$root" | cut -f1)
sed -e "s/@VERSION@/$version/" -e "s/@DEPENDS@/$depends/" -e "s/@INSTALLED_SIZE@/$installed_size/" \
    "$here/control.in" >"$root/DEBIAN/control"
(cd "$root" && find usr -type f -exec md5sum {} + | sort -k2) >"$root/DEBIAN/md5sums"
dpkg-deb --root-owner-group -Zxz --build "$root" "$output" >/dev/null
