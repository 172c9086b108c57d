#!/usr/bin/env bash
# SPDX-License-Identifier: AGPL-3.0-or-later
# `make bench`: builds the plug-in of a baseline revision in a folder of its own, runs the same bench
# host (ondrivel-bench) on that bundle and on this tree's, and prints one table of both with ratios.
# Usage: bench/bench.sh BUILD_DIR BASE_REVISION [JOBS]
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "$1" && pwd)
base_rev=$(git -C "$root" rev-parse --verify "$2^{commit}")
jobs=${3:-2}
runs=${BENCH_RUNS:-5}
bench="$build/bench/ondrivel-bench"
out="$build/bench"
started=$SECONDS

# The baseline: its sources from git, the prepared framework hard-linked in (no copy on disk), its
# own build under its own root so that ccache serves the objects other clones compiled.
base_dir="$build/bench-base"
build_base() {
  if [ "$(cat "$base_dir/.revision" 2>/dev/null)" != "$base_rev" ]; then
    rm -rf "$base_dir"
    mkdir -p "$base_dir"
    git -C "$root" archive "$base_rev" | tar -x -C "$base_dir"
    echo "$base_rev" > "$base_dir/.revision"
  fi
  local marker
  marker=$(cat "$root"/third_party/*/.ondrivel-version)
  if [ "$(cat "$base_dir/.third-party" 2>/dev/null)" != "$marker" ]; then
    rm -rf "$base_dir/third_party"
    cp -al "$root/third_party" "$base_dir/third_party"
    echo "$marker" > "$base_dir/.third-party"
  fi
  echo "bench: building the baseline ${base_rev:0:7} in $base_dir"
  (cd "$base_dir" && export CCACHE_BASEDIR="$base_dir" CCACHE_NOHASHDIR=1 \
    && cmake -S . -B build -DCMAKE_BUILD_TYPE=Release -DONDRIVEL_TESTS=OFF -DONDRIVEL_BENCH=OFF \
    && cmake --build build -j "$jobs" --target ondrivel_VST3) > "$base_dir/build.log" 2>&1 \
    || { tail -n 30 "$base_dir/build.log"; echo "bench: the baseline did not build ($base_dir/build.log)" >&2; exit 1; }
}
build_base

declare -A bundle=([base]="$base_dir/build/ondrivel_artefacts/Release/VST3/ondrivel.vst3"
                   [this]="$build/ondrivel_artefacts/Release/VST3/ondrivel.vst3")
# Render arguments per job, and the audio seconds timed for CPU and for callgrind (16 instances
# under callgrind take long, and count exactly what one does sixteen times over).
declare -A job_args=([full]="--patch full" [default]="--patch default" [note]="--patch note"
                     [idle]="--patch idle" [x16]="--patch full --instances 16")
declare -A cpu_seconds=([full]=10 [default]=10 [note]=10 [idle]=10 [x16]=2)
declare -A callgrind_seconds=([full]=1 [default]=1 [note]=1 [idle]=1 [x16]=0.5)
job_names=(full default note idle x16)
builds=(base this)

value_of() { # key, then the command printing "key value" lines
  local key=$1
  shift
  "$@" | awk -v k="$key" '$1 == k { print $2 }'
}

median() {
  printf '%s\n' "$@" | sort -g | awk '{ v[NR] = $1 } END { print NR % 2 ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'
}

instructions_per_second() { # build job
  local file="$out/callgrind.$1.$2" audio
  # Only renderMeasured is counted, and instrumentation is off until the timed part starts.
  audio=$(value_of audio_seconds valgrind -q --tool=callgrind --instr-atstart=no --collect-atstart=no \
    --toggle-collect='*renderMeasured*' --callgrind-out-file="$file" \
    "$bench" render --plugin "${bundle[$1]}" ${job_args[$2]} --seconds "${callgrind_seconds[$2]}")
  awk -v a="$audio" '$1 == "totals:" { printf "%.0f", $2 / a }' "$file"
}

# The part of a profile spent inside the plug-in's own process call, without the host's VST3 wrapper
# around it (which, for every block, walks a flag per parameter the plug-in declares).
own_share() { # build job
  local file="$out/callgrind.$1.$2"
  callgrind_annotate --inclusive=yes "$file" 2>/dev/null | awk -v total="$(awk '$1 == "totals:" { print $2 }' "$file")" '
    /juce::JuceVST3Component::process\(Steinberg::Vst::ProcessData&\)/ && !/thunk/ { gsub(",", "", $1); printf "%.6f", $1 / total; exit }'
}

declare -A cpu instr own memory panel
echo "bench: instructions (callgrind) ($((SECONDS - started)) s)"
for j in "${job_names[@]}"; do
  for b in "${builds[@]}"; do instr[$b.$j]=$(instructions_per_second "$b" "$j"); done
done
for j in full idle; do
  for b in "${builds[@]}"; do own[$b.$j]=$(awk -v i="${instr[$b.$j]}" -v s="$(own_share "$b" "$j")" 'BEGIN { printf "%.0f", i * s }'); done
done

echo "bench: CPU time, $runs runs ($((SECONDS - started)) s)"
declare -A samples
for ((r = 0; r < runs; ++r)); do
  for j in "${job_names[@]}"; do
    for b in "${builds[@]}"; do # alternating, so that a busy moment of the machine hits both
      samples[$b.$j]+=" $(value_of cpu_per_audio_second "$bench" render --plugin "${bundle[$b]}" ${job_args[$j]} --seconds "${cpu_seconds[$j]}")"
    done
  done
done
for key in "${!samples[@]}"; do cpu[$key]=$(median ${samples[$key]}); done

echo "bench: memory and the open panel ($((SECONDS - started)) s)"
for b in "${builds[@]}"; do
  for rate in 48000 96000; do
    memory[$b.$rate]=$(median $(for r in 1 2 3; do value_of playing_mb "$bench" memory --plugin "${bundle[$b]}" --rate $rate; done))
  done
done
# Both panels at once, side by side on one virtual screen, so that whatever else the machine does
# weighs on both alike; two rounds, the median of all their windows. A case is a width (0: the panel
# closed) and "frame" for a blank window of the panel's size in its place: what the host's own window
# costs; the panel's own cost is what the open panel adds to it.
panel_pair() { # width [frame] -> base and this tree's results added to $out/panel.{base,this}.<width>[frame]
  local flag="" tag="$1"
  if [ "${2:-}" = frame ]; then flag=--frame-only; tag="$1frame"; fi
  xvfb-run -a -s "-screen 0 3840x2160x24" bash -c 'set -e; "$1" panel --plugin "$2" --width "$4" $6 >> "$5/panel.base.$7" & base=$!
    "$1" panel --plugin "$3" --width "$4" $6 --left 1900 >> "$5/panel.this.$7"; wait $base' \
    panel "$bench" "${bundle[base]}" "${bundle[this]}" "$1" "$out" "$flag" "$tag"
}
rm -f "$out"/panel.*
panel_cases=(0 880 880frame 1760 1760frame)
for round in 1 2; do
  for case in "${panel_cases[@]}"; do panel_pair "${case%frame}" "$([ "$case" != "${case%frame}" ] && echo frame)"; done
done
for case in "${panel_cases[@]}"; do
  for b in "${builds[@]}"; do
    panel[$b.$case]=$(median $(awk '$1 == "panel_percent" { $1 = ""; print }' "$out/panel.$b.$case"))
    for shown in $(awk '$1 == "shown_width" { print $2 }' "$out/panel.$b.$case"); do
      [ "$shown" = "${case%frame}" ] || echo "bench: the $b panel ($case) opened $shown px wide instead of ${case%frame}" >&2
    done
  done
done
for width in 880 1760; do
  for b in "${builds[@]}"; do
    panel[$b.${width}own]=$(awk -v a="${panel[$b.$width]}" -v f="${panel[$b.${width}frame]}" 'BEGIN { printf "%.4f", a - f }')
  done
done

for key in "${!cpu[@]}"; do echo "cpu.$key ${cpu[$key]}"; done > "$out/results.txt"
for key in "${!instr[@]}"; do echo "instructions.$key ${instr[$key]}"; done >> "$out/results.txt"
for key in "${!own[@]}"; do echo "own_instructions.$key ${own[$key]}"; done >> "$out/results.txt"
for key in "${!memory[@]}"; do echo "memory.$key ${memory[$key]}"; done >> "$out/results.txt"
for key in "${!panel[@]}"; do echo "panel.$key ${panel[$key]}"; done >> "$out/results.txt"

# The table: one row per measure; ratio = this tree / baseline.
this_label="this $(git -C "$root" rev-parse --short=7 HEAD)"
[ -z "$(git -C "$root" status --porcelain --untracked-files=no)" ] || this_label+="+"

row() { # what, base, this, format, target text, target value (this / reference), comparison, limit
  awk -v what="$1" -v b="$2" -v t="$3" -v fmt="$4" -v target="$5" -v v="${6:-}" -v cmp="${7:-}" -v lim="${8:-}" 'BEGIN {
    met = ""
    if (cmp == "<=") met = (v <= lim) ? "met" : "NOT MET"
    if (cmp == "~") met = (v >= 1 - lim && v <= 1 + lim) ? "met" : "NOT MET"
    printf "| %-38s | %14s | %14s | %6.3f | %-34s | %-7s |\n", what, sprintf(fmt, b), sprintf(fmt, t), (b > 0 ? t / b : 0), target, met
  }'
}
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.4f", (b > 0 ? a / b : 0) }'; }
percent() { awk -v a="$1" 'BEGIN { printf "%.2f", 100 * a }'; }

mega="%.1f M"
cpu_fmt="%.5f"
idle_cpu=$(ratio "${cpu[this.idle]}" "${cpu[this.full]}")
idle_instr=$(ratio "${instr[this.idle]}" "${instr[this.full]}")
idle_own=$(ratio "${own[this.idle]}" "${own[this.full]}")
scale_cpu=$(ratio "${cpu[this.x16]}" "$(awk -v a="${cpu[this.full]}" 'BEGIN { print 16 * a }')")
scale_instr=$(ratio "${instr[this.x16]}" "$(awk -v a="${instr[this.full]}" 'BEGIN { print 16 * a }')")
memory_growth=$(ratio "${memory[this.96000]}" "${memory[this.48000]}")
m() { awk -v a="$1" 'BEGIN { printf "%.1f", a / 1e6 }'; }

echo
echo "ondrivel bench: 48000 Hz, blocks of 256, notes held from the first sample at velocity 100, 1 s warm-up not timed."
echo "CPU: thread CPU seconds per audio second, median of $runs runs. Instructions: callgrind, per audio second."
echo
printf '| %-38s | %14s | %14s | %6s | %-34s | %-7s |\n' "what" "base ${base_rev:0:7}" "$this_label" "ratio" "target" ""
echo "|----------------------------------------|----------------|----------------|--------|------------------------------------|---------|"
row "full patch: CPU s / audio s" "${cpu[base.full]}" "${cpu[this.full]}" "$cpu_fmt" "ratio <= 0.50" "$(ratio "${cpu[this.full]}" "${cpu[base.full]}")" "<=" 0.50
row "full patch: instructions / audio s" "$(m "${instr[base.full]}")" "$(m "${instr[this.full]}")" "$mega" "ratio <= 0.45" "$(ratio "${instr[this.full]}" "${instr[base.full]}")" "<=" 0.45
row "default patch: CPU s / audio s" "${cpu[base.default]}" "${cpu[this.default]}" "$cpu_fmt" ""
row "default patch: instructions / audio s" "$(m "${instr[base.default]}")" "$(m "${instr[this.default]}")" "$mega" ""
row "one note: CPU s / audio s" "${cpu[base.note]}" "${cpu[this.note]}" "$cpu_fmt" ""
row "one note: instructions / audio s" "$(m "${instr[base.note]}")" "$(m "${instr[this.note]}")" "$mega" ""
row "idle: CPU s / audio s" "${cpu[base.idle]}" "${cpu[this.idle]}" "$cpu_fmt" "<= 3 % of full patch: $(percent "$idle_cpu") %" "$idle_cpu" "<=" 0.03
row "idle: instructions / audio s" "$(m "${instr[base.idle]}")" "$(m "${instr[this.idle]}")" "$mega" "<= 3 % of full patch: $(percent "$idle_instr") %" "$idle_instr" "<=" 0.03
row "idle: the plug-in's own instructions" "$(m "${own[base.idle]}")" "$(m "${own[this.idle]}")" "$mega" "<= 3 % of its full patch: $(percent "$idle_own") %" "$idle_own" "<=" 0.03
row "16 instances: CPU s / audio s" "${cpu[base.x16]}" "${cpu[this.x16]}" "$cpu_fmt" "16 x one +-10 %: $scale_cpu" "$scale_cpu" "~" 0.10
row "16 instances: instructions / audio s" "$(m "${instr[base.x16]}")" "$(m "${instr[this.x16]}")" "$mega" "16 x one +-10 %: $scale_instr" "$scale_instr" "~" 0.10
row "memory, one instance, 48 kHz (MB)" "${memory[base.48000]}" "${memory[this.48000]}" "%.1f" "<= 16 MB" "${memory[this.48000]}" "<=" 16
row "memory, one instance, 96 kHz (MB)" "${memory[base.96000]}" "${memory[this.96000]}" "%.1f" "<= 2 x 48 kHz: $memory_growth" "$memory_growth" "<=" 2
row "panel closed (% of a core)" "${panel[base.0]}" "${panel[this.0]}" "%.2f" "(the host and the processor)"
row "host window alone, 880 px (%)" "${panel[base.880frame]}" "${panel[this.880frame]}" "%.2f" "(blank, of the panel's size)"
row "open panel, 880 px (%)" "${panel[base.880]}" "${panel[this.880]}" "%.2f" "(the process in all)"
row "  the panel's own, 880 px (%)" "${panel[base.880own]}" "${panel[this.880own]}" "%.2f" "<= 1 %" "${panel[this.880own]}" "<=" 1
row "host window alone, 1760 px (%)" "${panel[base.1760frame]}" "${panel[this.1760frame]}" "%.2f" "(blank, of the panel's size)"
row "open panel, 1760 px (%)" "${panel[base.1760]}" "${panel[this.1760]}" "%.2f" "(the process in all)"
row "  the panel's own, 1760 px (%)" "${panel[base.1760own]}" "${panel[this.1760own]}" "%.2f" "<= 2 %" "${panel[this.1760own]}" "<=" 2
echo
echo "bench: $((SECONDS - started)) s; callgrind profiles in $out/callgrind.{base,this}.* (callgrind_annotate)"
