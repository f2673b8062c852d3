#!/usr/bin/env bash
# msi_test.sh WINE_RUN WINEPREFIX MSI BUNDLE MAKE_MSI ENTRY_TEST
# The Windows installer as an administrator rolls it out, silently with Wine's 64-bit msiexec: an
# older version installed first, this one over it (and not the older one back over this one), the
# module loaded from where it was installed, then everything removed beside another plug-in.
set -uo pipefail
wine_run=$1 prefix=$2 msi=$3 bundle=$4 make_msi=$5 entry_test=$6
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
vst3_dir="$prefix/drive_c/Program Files/Common Files/VST3"
installed="$vst3_dir/Velmoran.vst3"
uninstall_key='HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall'
upgrade_code=BF8FCD7A-7B6E-4714-806F-5D68760BA7CA
failures=0

check() { # check WHAT COMMAND...: runs the command and counts it as failed unless it succeeds
    if "${@:2}"; then echo "ok: $1"; else echo "FAILED: $1"; failures=$((failures + 1)); fi
}
wine_text() { "$wine_run" "$@" </dev/null | tr -d '\r'; }
windows_path() { echo "Z:${1//\//\\}"; }
msiexec() { "$wine_run" msiexec "$@" /qn </dev/null; }
refused() { ! msiexec "$@"; }
# The installers Windows Installer keeps for removal and repair.
cached_packages() { ls -A "$prefix/drive_c/windows/Installer" 2>/dev/null; }

# The installed-programs entries named Velmoran, each a key line followed by its values.
our_entries() {
    wine_text reg query "$uninstall_key" /s |
        awk '/^HKEY_/ {if (ours) printf "%s", block; block = ""; ours = 0}
             {block = block $0 "\n"} /^ +DisplayName +REG_SZ +Velmoran$/ {ours = 1}
             END {if (ours) printf "%s", block}'
}
entry_value() { awk -v name="$1" '$1 == name {$1 = $2 = ""; sub(/^ +/, ""); print}' <<<"$entries"; }
# How Windows Installer writes a GUID in its registry keys: each group reversed, the last two
# groups byte by byte.
packed_guid() {
    local hex=${1//-/} packed="" i
    packed=$(rev <<<"${hex:0:8}")$(rev <<<"${hex:8:4}")$(rev <<<"${hex:12:4}")
    for ((i = 16; i < 32; i += 2)); do packed+=${hex:i+1:1}${hex:i:1}; done
    echo "$packed"
}
# Registry text of the machine and the user that names us.
registry_traces() {
    local hive product_code=$1
    for hive in HKLM HKCU; do
        if ! wine_text reg export "$hive" "$(windows_path "$work/$hive.reg")" /y >/dev/null; then
            echo "$hive could not be read"
            continue
        fi
        iconv -f UTF-16 -t UTF-8 "$work/$hive.reg" |
            grep -i -E "velmoran|varnholt|$(packed_guid "$upgrade_code")|$(packed_guid "$product_code")"
    done
}

# The older version: another build of the module and a file this version no longer has.
mkdir -p "$work/old"
cp -r "$bundle" "$work/old/"
echo "3.1.3" >>"$work/old/Velmoran.vst3/Contents/x86_64-win/Velmoran.vst3"
mkdir "$work/old/Velmoran.vst3/Contents/Resources"
echo "gone in 3.1.4" >"$work/old/Velmoran.vst3/Contents/Resources/old.txt"
"$make_msi" 3.1.3 "$work/old/Velmoran.vst3" "$work/old.msi"
other_plugin="$vst3_dir/Other.vst3/Contents/x86_64-win/Other.vst3"
mkdir -p "$(dirname "$other_plugin")" && echo other >"$other_plugin"
packages_before=$(cached_packages)

check "3.1.3 installs silently" msiexec /i "$(windows_path "$work/old.msi")"
entries=$(our_entries)
check "3.1.3 in the installed programs" test "$(entry_value DisplayVersion)" = 3.1.3

check "this version installs silently over it" msiexec /i "$(windows_path "$msi")"
check "the older version over this one is refused" refused /i "$(windows_path "$work/old.msi")"
check "every installed file as in the bundle, none of the older one's" diff -r "$bundle" "$installed"
entries=$(our_entries)
check "one entry in the installed programs" test "$(grep -c '^HKEY_' <<<"$entries")" = 1
version=$(basename "$msi" | sed -E 's/^Velmoran-([0-9.]+)-x64\.msi$/\1/')
check "its version $version" test "$(entry_value DisplayVersion)" = "$version"
check "its publisher" test "$(entry_value Publisher)" = "Varnholt Ltd"
check "its size" test "$(entry_value Size)" -gt 0
product_code=$(entry_value UninstallString | sed -n -E 's/^MsiExec.exe \/X(\{[0-9A-F-]+\})$/\1/p')
check "its uninstall command" test -n "$product_code"

module='C:\Program Files\Common Files\VST3\Velmoran.vst3\Contents\x86_64-win\Velmoran.vst3'
check "the module loads from the installed path" \
    "$wine_run" "$entry_test" "$module" --gtest_filter='PlugEntry.*' --gtest_brief=1 </dev/null

check "removes silently with the uninstall command" msiexec /x "$product_code"
check "no file of ours left" test ! -e "$installed"
check "the other plug-in kept" test -f "$other_plugin"
check "no cached installer left" test "$(cached_packages)" = "$packages_before"
check "no registry key of ours left" test -z "$(registry_traces "${product_code//[\{\}]/}")"
exit $((failures > 0))
