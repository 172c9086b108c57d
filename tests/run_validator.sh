#!/usr/bin/env bash
# SPDX-License-Identifier: AGPL-3.0-or-later
# Runs Steinberg's validator on the bundle in a throw-away HOME; fails on any failed validator test.
set -u
validator=$1; bundle=$2; shift 2
home=$(mktemp -d); trap 'rm -rf "$home"' EXIT
out=$(HOME="$home" "$validator" "$@" "$bundle" 2>&1); rc=$?
echo "$out" | tail -n 5
echo "$out" | grep -E '^\s*(Result|\[Failed\]|.*Failed)' | head -20
failed=$(echo "$out" | grep -Eo '[0-9]+ tests? failed' | grep -Eo '^[0-9]+' | tail -1)
passed=$(echo "$out" | grep -Eo '[0-9]+ tests? passed' | grep -Eo '^[0-9]+' | tail -1)
echo "validator: passed=${passed:-?} failed=${failed:-?} exit=$rc"
[ "$rc" = 0 ] && [ "${failed:-1}" = 0 ] && [ -n "${passed:-}" ]
