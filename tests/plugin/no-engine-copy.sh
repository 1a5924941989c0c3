#!/usr/bin/env bash
# Fails when the plug-in defines a function or object that the engine library exports.
# Strong definitions only: inline functions and templates are weak and may be in both.
# Run as: no-engine-copy.sh ZERBIN_SO LIBZERBIN_SO
set -euo pipefail
strong() { nm "$@" | awk '$2 ~ /^[TDBR]$/ { sub(/@.*/, "", $3); print $3 }' | sort -u; }
copies=$(comm -12 <(strong --defined-only "$1") <(strong -D --defined-only "$2"))
if [[ -n "$copies" ]]; then
    echo "Zerbin.so holds copies of the engine's symbols:" >&2
    c++filt <<< "$copies" >&2
    exit 1
fi
