#!/usr/bin/env bash
# SPDX-License-Identifier: AGPL-3.0-or-later
# The program without a display says so and fails at once; on a virtual display with no sound card it
# opens its window, stays up, and quits cleanly on Ctrl-C.
set -u
program=$1
out=$(env -u DISPLAY timeout 20 "$program" 2>&1); status=$?
[ "$status" -ne 0 ] && [ "$status" -ne 124 ] || { echo "no display: exit status $status, wanted a quick failure"; exit 1; }
grep -q "no display" <<<"$out" || { echo "no display: the terminal was not told ($out)"; exit 1; }

cat > "${TMPDIR:-/tmp}/ondrivel-standalone-$$.sh" <<'INNER'
"$1" >/dev/null 2>&1 & pid=$!
for _ in $(seq 60); do xwininfo -root -tree | grep -q '"ondrivel": ("ondrivel"' && break; sleep 0.5; done
xwininfo -root -tree | grep -q '"ondrivel": ("ondrivel"' || { echo "no window appeared"; kill -9 $pid; exit 1; }
sleep 2; kill -0 $pid || { echo "the program did not stay up"; exit 1; }
kill -INT $pid
for _ in $(seq 40); do kill -0 $pid 2>/dev/null || break; sleep 0.25; done
kill -0 $pid 2>/dev/null && { echo "Ctrl-C did not end the program"; kill -9 $pid; exit 1; }
wait $pid
INNER
xvfb-run -a bash "${TMPDIR:-/tmp}/ondrivel-standalone-$$.sh" "$program"; status=$?
rm -f "${TMPDIR:-/tmp}/ondrivel-standalone-$$.sh"
exit $status
