#!/bin/bash
# check_install.sh BUILD_DIR VERSION APP_ID
# Installs the build into a temporary prefix and checks the result.
set -euo pipefail
build=$1 version=$2 id=$3

for tool in desktop-file-validate appstreamcli; do
    command -v "$tool" >/dev/null || { echo "$tool is missing, check skipped"; exit 77; }
done

prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$build" --prefix "$prefix" >/dev/null

failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

desktop=$prefix/share/applications/$id.desktop
metainfo=$prefix/share/metainfo/$id.metainfo.xml
for file in bin/zkr_muf bin/zkr_muf_cli share/zkr_muf/TelnetDXCluster.txt \
    share/doc/zkr_muf/README.md share/icons/hicolor/scalable/apps/$id.svg; do
    [ -s "$prefix/$file" ] || fail "$file not installed"
done
cmp -s "$prefix/share/zkr_muf/TelnetDXCluster.txt" "$build/bin/TelnetDXCluster.txt" ||
    fail "the installed cluster list differs from the one beside the built program"

# Desktop validators print their complaints; warnings count as failures too.
complaints=$(desktop-file-validate "$desktop" 2>&1) || fail "desktop-file-validate failed"
[ -z "$complaints" ] || fail "desktop-file-validate: $complaints"
appstreamcli validate --no-net "$metainfo" || fail "appstreamcli validate failed"
# The whole tree: the metainfo's launchable entry and its icon are found.
appstreamcli validate-tree --no-net "$prefix" || fail "appstreamcli validate-tree failed"

# The entry must start an installed program and name an installed icon.
grep -qx "Exec=zkr_muf" "$desktop" || fail "Exec is not zkr_muf"
grep -qx "Icon=$id" "$desktop" || fail "Icon is not $id"
grep -q "^Categories=.*HamRadio;" "$desktop" || fail "not in HamRadio"
grep -q "<launchable type=\"desktop-id\">$id.desktop</launchable>" "$metainfo" ||
    fail "the metainfo does not launch $id.desktop"
grep -q "<release version=\"$version\"" "$metainfo" || fail "the metainfo lacks release $version"
for size in 16 32 48 64 128 256; do
    png=$prefix/share/icons/hicolor/${size}x${size}/apps/$id.png
    # Width and height stand as 32-bit big-endian numbers at byte 16 of a PNG.
    dims=$(od -An -tx1 -j16 -N8 "$png" 2>/dev/null | tr -d ' \n') || dims=missing
    [ "$dims" = "$(printf '%08x%08x' "$size" "$size")" ] || fail "$png is not ${size}x${size}"
done

# --version and --help answer without a display (no window system reachable).
nodisplay=(env -u DISPLAY -u WAYLAND_DISPLAY QT_QPA_PLATFORM=xcb)
out=$("${nodisplay[@]}" "$prefix/bin/zkr_muf" --version 2>&1) || fail "zkr_muf --version failed"
[ "$out" = "zkr_muf $version" ] || fail "zkr_muf --version printed: $out"
out=$("${nodisplay[@]}" "$prefix/bin/zkr_muf" --help 2>&1) || fail "zkr_muf --help failed"
grep -q "/WEBCLUSTER" <<<"$out" || fail "zkr_muf --help lacks the options: $out"
out=$("$prefix/bin/zkr_muf_cli" --version 2>&1) || fail "zkr_muf_cli --version failed"
[ "$out" = "zkr_muf_cli $version" ] || fail "zkr_muf_cli --version printed: $out"

[ "$failures" -eq 0 ] || exit 1
echo "install under $prefix checked"
