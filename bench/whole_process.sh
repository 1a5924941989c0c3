#!/usr/bin/env bash
# Whole-process project load against a whole process that only parses the same file with
# pugixml: generates the 10,000-block project, runs `zerbin load` and ParseOnly alternately,
# both started the same way, and prints the median wall time of each, their ratio and (when
# GNU time is installed) the peak RSS of each against the file's size.
# Usage: bench/whole_process.sh [BUILD_DIR] [RUNS]   (BUILD_DIR built with -DZERBIN_BENCH=ON)
set -euo pipefail

build=${1:-build}
runs=${2:-10}
zerbin=$build/cli/zerbin
parse=$build/bench/ParseOnly
for program in "$zerbin" "$parse" "$build/bench/ProjectLoadBench"; do
    [[ -x $program ]] || { echo "missing $program: build with -DZERBIN_BENCH=ON" >&2; exit 2; }
done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# ProjectLoadBench writes the project into the temporary folder before it runs anything;
# a filter that matches nothing makes it stop there.
TMPDIR=$work "$build/bench/ProjectLoadBench" --benchmark_filter='^$' > /dev/null 2>&1 || true
project=$work/zerbin-bench-project.xml
[[ -s $project ]] || { echo "the project was not generated" >&2; exit 2; }
size=$(stat -c %s "$project")

gnu_time=
if [[ -x /usr/bin/time ]] && /usr/bin/time -f %M true > /dev/null 2>&1; then
    gnu_time=/usr/bin/time
fi

# Runs a command once; prints its wall time in microseconds and its peak RSS in KB (0 unknown).
run_once() {
    local start end rss=0
    start=$(date +%s%N)
    if [[ -n $gnu_time ]]; then
        rss=$("$gnu_time" -f %M "$@" 2>&1 > /dev/null | tail -n 1)
    else
        "$@" > /dev/null
    fi
    end=$(date +%s%N)
    echo "$(((end - start) / 1000)) $rss"
}

median() { sort -n | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }

: > "$work/load" && : > "$work/parse"
for ((i = 0; i < runs; ++i)); do
    run_once "$zerbin" load "$project" >> "$work/load"
    run_once "$parse" "$project" >> "$work/parse"
done

load_us=$(cut -d' ' -f1 "$work/load" | median)
parse_us=$(cut -d' ' -f1 "$work/parse" | median)
load_rss=$(cut -d' ' -f2 "$work/load" | median)
parse_rss=$(cut -d' ' -f2 "$work/parse" | median)
awk -v l="$load_us" -v p="$parse_us" -v lr="$load_rss" -v pr="$parse_rss" -v s="$size" -v n="$runs" 'BEGIN {
    printf "project: %.1f MB, medians of %d runs\n", s / 1e6, n
    printf "zerbin load: %.1f ms; pugixml parse only: %.1f ms; ratio %.1f\n", l / 1000, p / 1000, l / p
    if (lr > 0) {
        printf "peak RSS: zerbin load %.1f MiB (%.1f x the file); parse only %.1f MiB (%.1f x)\n",
               lr / 1024, lr * 1024 / s, pr / 1024, pr * 1024 / s
    }
}'
