#!/usr/bin/env bash
# SPDX-License-Identifier: AGPL-3.0-or-later
# Builds the Debian package from the build tree and checks what it installs and what it depends on.
set -eu
build=$1
work=$(mktemp -d); trap 'rm -rf "$work"' EXIT
(cd "$build" && cpack -G DEB -B "$work" >/dev/null)
deb=$(ls "$work"/ondrivel_*.deb)
list=$(dpkg-deb -c "$deb" | sed -E 's/^([^ ]+ +){5}//')
for path in ./usr/lib/vst3/ondrivel.vst3/Contents/x86_64-linux/ondrivel.so \
            ./usr/lib/vst3/ondrivel.vst3/Contents/Resources/Presets/ \
            ./usr/lib/lv2/ondrivel.lv2/manifest.ttl ./usr/lib/lv2/ondrivel.lv2/dsp.ttl \
            ./usr/lib/lv2/ondrivel.lv2/libondrivel.so ./usr/lib/lv2/ondrivel.lv2/Resources/Presets/ \
            ./usr/bin/ondrivel ./usr/share/ondrivel/Presets/ ./usr/share/ondrivel/picture_key.png \
            ./usr/share/applications/ondrivel.desktop ./usr/share/pixmaps/ondrivel.png; do
  grep -qxF "$path" <<<"$list" || { echo "missing from the package: $path"; exit 1; }
done
presets=$(ls "$(dirname "$0")/../resources/presets" | wc -l)
for folder in usr/lib/vst3/ondrivel.vst3/Contents/Resources/Presets usr/lib/lv2/ondrivel.lv2/Resources/Presets usr/share/ondrivel/Presets; do
  [ "$(grep -c "^\./$folder/[^/]*\.xml$" <<<"$list")" -eq "$presets" ] || { echo "$folder lacks factory presets"; exit 1; }
done
depends=$(dpkg-deb -f "$deb" Depends)
for lib in libc6 libasound2 libfreetype6; do
  grep -q "$lib" <<<"$depends" || { echo "Depends lacks $lib: $depends"; exit 1; }
done
echo "$(basename "$deb"): $(du -k "$deb" | cut -f1) kB; Depends: $depends"
