#!/usr/bin/env bash
# SPDX-License-Identifier: AGPL-3.0-or-later
# Installs the build dependencies from Debian and prepares the JUCE 8 and VST3 SDK source trees
# from Debian's source packages. Idempotent: a second run downloads and extracts nothing.
set -euo pipefail

here=$(cd "$(dirname "$0")/.." && pwd)
cache="${ONDRIVEL_CACHE:-$HOME/.cache/ondrivel}"
deps_dir="$here/third_party"
mkdir -p "$cache" "$deps_dir"

SUDO=""
if [ "$(id -u)" != 0 ]; then SUDO="sudo"; fi

packages=(build-essential cmake pkgconf ccache dpkg-dev xz-utils patch
  libasound2-dev libcurl4-openssl-dev libfontconfig-dev libfreetype-dev libjpeg-dev libpng-dev
  zlib1g-dev libflac-dev libogg-dev libvorbis-dev libx11-dev libxcomposite-dev libxcursor-dev
  libxext-dev libxinerama-dev libxrandr-dev libgl-dev
  libgtest-dev libgmock-dev libxsimd-dev valgrind xvfb xauth
  fonts-dejavu-core clang libclang-rt-14-dev
  libjack-jackd2-dev lv2-dev sordi x11-utils)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ "${#missing[@]}" -gt 0 ]; then
  echo "setup: installing ${missing[*]}"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq "${missing[@]}" >/dev/null
fi

# The mirror this machine already uses; never a fixed host.
mirror=""
if [ -f /etc/apt/sources.list.d/debian.sources ]; then
  mirror=$(awk '/^URIs:/ {print $2; exit}' /etc/apt/sources.list.d/debian.sources)
fi
if [ -z "$mirror" ] && [ -f /etc/apt/sources.list ]; then
  mirror=$(awk '$1=="deb" && $0 !~ /security/ {for(i=2;i<=NF;i++) if ($i ~ /^[a-z]+:\/\//) {print $i; exit}}' /etc/apt/sources.list)
fi
[ -n "$mirror" ] || { echo "setup: no Debian mirror configured" >&2; exit 1; }

fetch_source() { # $1 = source package name; leaves its files in $cache/$1
  local name=$1 dir="$cache/$1"
  mkdir -p "$dir"
  if ls "$dir"/*.orig.tar.* >/dev/null 2>&1; then return 0; fi
  local list="$cache/apt/sources.list" lists="$cache/apt/lists"
  mkdir -p "$lists/partial"
  printf 'deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] %s trixie main\n' "$mirror" > "$list"
  local opts=(-o "Dir::Etc::SourceList=$list" -o Dir::Etc::SourceParts=/dev/null -o "Dir::State::Lists=$lists")
  if [ ! -f "$cache/apt/updated" ]; then
    apt-get "${opts[@]}" update -qq
    touch "$cache/apt/updated"
  fi
  # Some revisions lose their .dsc in the pool while the orig tarballs stay: keep what arrived.
  (cd "$dir" && apt-get "${opts[@]}" source --download-only "$name" >/dev/null 2>&1) || true
  if ! ls "$dir"/*.orig.tar.* >/dev/null 2>&1; then
    local uris
    uris=$(cd "$dir" && apt-get "${opts[@]}" source --print-uris "$name" 2>/dev/null | awk -F"'" '/orig/ {print $2}')
    for u in $uris; do (cd "$dir" && apt-get "${opts[@]}" download --print-uris >/dev/null 2>&1; curl -fsSLO "$u" || wget -q "$u") || true; done
  fi
  ls "$dir"/*.orig.tar.* >/dev/null 2>&1 || { echo "setup: could not fetch source of $name" >&2; exit 1; }
}

prepare_juce() {
  local dest="$deps_dir/juce" marker
  fetch_source juce
  local orig deb
  orig=$(ls "$cache"/juce/juce_*.orig.tar.* | head -1)
  deb=$(ls "$cache"/juce/juce_*.debian.tar.* 2>/dev/null | head -1 || true)
  marker="$(basename "$orig") $(basename "${deb:-none}")"
  if [ -f "$dest/.ondrivel-version" ] && [ "$(cat "$dest/.ondrivel-version")" = "$marker" ]; then return 0; fi
  rm -rf "$dest" "$dest.tmp"; mkdir -p "$dest.tmp"
  tar -xf "$orig" -C "$dest.tmp" --strip-components=1
  if [ -n "$deb" ]; then
    tar -xf "$deb" -C "$dest.tmp"
    if [ -f "$dest.tmp/debian/patches/series" ]; then
      while read -r p _; do
        case "$p" in ''|\#*) continue;; esac
        patch -d "$dest.tmp" -p1 -s < "$dest.tmp/debian/patches/$p"
      done < "$dest.tmp/debian/patches/series"
    fi
  fi
  echo "$marker" > "$dest.tmp/.ondrivel-version"
  mv "$dest.tmp" "$dest"
}

prepare_vst3sdk() {
  local dest="$deps_dir/vst3sdk" marker
  fetch_source vst3sdk
  marker=$(cd "$cache/vst3sdk" && ls *.orig*.tar.* | sort | tr '\n' ' ')
  if [ -f "$dest/.ondrivel-version" ] && [ "$(cat "$dest/.ondrivel-version")" = "$marker" ]; then return 0; fi
  rm -rf "$dest" "$dest.tmp"; mkdir -p "$dest.tmp"
  local f comp
  for f in "$cache"/vst3sdk/*.orig*.tar.*; do
    comp=$(basename "$f" | sed -n 's/.*\.orig-\([^.]*\)\.tar\..*/\1/p')
    if [ -z "$comp" ]; then
      tar -xf "$f" -C "$dest.tmp" --strip-components=1
    else
      [ "$comp" = public-sdk ] && comp=public.sdk
      mkdir -p "$dest.tmp/$comp"
      tar -xf "$f" -C "$dest.tmp/$comp" --strip-components=1
    fi
  done
  # Only the validator is wanted from the hosting samples; the others need GTK.
  echo 'add_subdirectory(validator)' > "$dest.tmp/public.sdk/samples/vst-hosting/CMakeLists.txt"
  echo "$marker" > "$dest.tmp/.ondrivel-version"
  mv "$dest.tmp" "$dest"
}

prepare_juce
prepare_vst3sdk
echo "setup: dependencies ready in $deps_dir"
