#!/usr/bin/env bash
# deb_test.sh contents|lintian|install DEB BUNDLE CHECK_MODULE
# The Debian package as a host and a system see it: its files and fields, lintian's verdict, and
# an installation and removal in a throw-away root.
set -uo pipefail
step=$1 deb=$2 bundle=$3 check_module=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
installed=usr/lib/vst3/Velmoran.vst3
module=$installed/Contents/x86_64-linux/Velmoran.so
failures=0

check() { # check WHAT COMMAND...: runs the command and counts it as failed unless it succeeds
    if "${@:2}"; then echo "ok: $1"; else echo "FAILED: $1"; failures=$((failures + 1)); fi
}
field() { dpkg-deb -f "$deb" "$1"; }
# The packages that hold the libraries the module needs.
needed_packages() {
    objdump -p "$1" | awk '$1 == "NEEDED" {print $2}' | while read -r library; do
        dpkg -S "*/x86_64-linux-gnu/$library" | head -n 1 | cut -d: -f1
    done | sort -u
}
depends_names() { field Depends | tr ',' '\n' | sed -E 's/^ *([^ ]+).*/\1/'; }
tree_of() { (cd "$1" && find . -path ./var/lib/dpkg -prune -o -print | sort); }

contents() {
    check "package name" test "$(field Package)" = velmoran-vst3
    check "version and architecture as the file name says" \
        test "velmoran-vst3_$(field Version)_$(field Architecture).deb" = "$(basename "$deb")"
    check "a short description naming VST 3" grep -q "VST 3" <<<"$(field Description | head -n 1)"
    check "a maintainer" test -n "$(field Maintainer)"
    dpkg-deb -x "$deb" "$work"
    check "the bundle, unchanged, at the standard path" diff -r "$bundle" "$work/$installed"
    check "a copyright file" test -s "$work/usr/share/doc/velmoran-vst3/copyright"
    check "no file outside the bundle and the documentation" test -z "$(dpkg-deb -c "$deb" |
        awk '$1 !~ /^d/ {print $6}' | grep -v -e "^\./$installed/" -e '^\./usr/share/doc/velmoran-vst3/')"
    check "the module's entry points" cmake -DMODULE="$work/$module" -P "$check_module"
    local package
    for package in $(needed_packages "$work/$module"); do
        check "depends on $package" grep -q -x "$package" <<<"$(depends_names)"
    done
}

install_and_remove() {
    local root=$work/root
    mkdir -p "$root/var/lib/dpkg/updates" "$root/var/lib/dpkg/info"
    : >"$root/var/lib/dpkg/status"
    local before
    before=$(tree_of "$root")
    # The throw-away root holds none of the dependencies.
    local dpkg=(dpkg --root="$root" --log=/dev/null --force-not-root --force-depends)
    check "installs" "${dpkg[@]}" --install "$deb"
    check "installed" grep -q "install ok installed" <<<"$("${dpkg[@]}" --status velmoran-vst3)"
    check "the module in place" test -f "$root/$module"
    check "every file as packaged" "${dpkg[@]}" --verify velmoran-vst3
    check "removes" "${dpkg[@]}" --purge velmoran-vst3
    check "nothing left behind" test "$before" = "$(tree_of "$root")"
}

case "$step" in
    contents) contents ;;
    lintian) check "lintian finds no error" lintian --fail-on error "$deb" ;;
    install) install_and_remove ;;
esac
exit $((failures > 0))
