#!/usr/bin/env bash
# Builds the fuzz targets and runs one of them for a given time.
#
#     fuzz/run.sh TARGET SECONDS [libFuzzer options...]
#
# TARGET is definition, dictionary, project or values (or fuzz_<name>). The target starts
# from its committed seeds in fuzz/corpus/<name>/ and keeps what it learns in
# $ZERBIN_FUZZ_BUILD/corpus/<name>/; a crashing input lands in
# $ZERBIN_FUZZ_BUILD/artifacts/<name>/ and the script fails. Replay one with
#
#     $ZERBIN_FUZZ_BUILD/fuzz_<name> path/to/crash-file
#
# Environment: ZERBIN_FUZZ_BUILD, the build folder (default build-fuzz at the repository
# root); CC and CXX, the compilers (default clang and clang++). One fuzzer process runs at a
# time, on one core.
set -euo pipefail

usage() {
    echo "usage: $0 definition|dictionary|project|values SECONDS [libFuzzer options...]" >&2
    exit 2
}

[[ $# -ge 2 ]] || usage
name=${1#fuzz_}
seconds=$2
shift 2
case $name in
    definition | dictionary | project | values) ;;
    *) usage ;;
esac
[[ $seconds =~ ^[0-9]+$ ]] || usage

root=$(cd "$(dirname "$0")/.." && pwd)
build=${ZERBIN_FUZZ_BUILD:-$root/build-fuzz}

if [[ ! -f $build/CMakeCache.txt ]]; then
    CC=${CC:-clang} CXX=${CXX:-clang++} \
        cmake -S "$root/fuzz" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo
fi
cmake --build "$build" -j2 --target "fuzz_$name"

corpus=$build/corpus/$name
artifacts=$build/artifacts/$name
mkdir -p "$corpus" "$artifacts"

dictionary=()
if [[ $name != values ]]; then
    dictionary=(-dict="$root/fuzz/xml.dict")
fi
# Without it libFuzzer takes the largest seed as the longest input it builds (112 bytes for
# the values); a later -max_len on the command line wins.
max_len=(-max_len=8192)

# The first corpus folder receives new inputs; the committed seeds are only read.
# -timeout: an input that takes longer than 10 s is a hang and counts as a finding.
exec "$build/fuzz_$name" \
    -max_total_time="$seconds" \
    -timeout=10 \
    -rss_limit_mb=2048 \
    -print_final_stats=1 \
    -artifact_prefix="$artifacts/" \
    "${max_len[@]}" \
    "${dictionary[@]}" \
    "$@" \
    "$corpus" "$root/fuzz/corpus/$name"
