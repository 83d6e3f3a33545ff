#!/usr/bin/env bash
# `make fuzz`: builds the libFuzzer targets with clang in their own build folder and runs each on
# a copy of its seeds there, FUZZ_SECONDS (60) apiece. Inputs that libFuzzer finds and crash
# reports stay in the build folder; the source tree is only read.
#   FUZZ_TARGETS="jsonapi deep_link"  only these targets
#   FUZZ_RUNS=1000000                 a number of executions instead of a time
set -euo pipefail
cd "$(dirname "$0")/.."

BUILD_DIR=${FUZZ_BUILD_DIR:-build-fuzz}
FUZZ_SECONDS=${FUZZ_SECONDS:-60}
JOBS=${JOBS:-2}

if ! command -v clang++ >/dev/null 2>&1; then
    echo "make fuzz: clang++ ist nicht installiert; die Fuzz-Ziele brauchen clang und werden übersprungen."
    exit 0
fi

if [ ! -f "$BUILD_DIR/build.ninja" ]; then
    CC=clang CXX=clang++ cmake -S . -B "$BUILD_DIR" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DVARNIS_FUZZ=ON -DVARNIS_BUILD_TESTS=OFF
fi
cmake --build "$BUILD_DIR" -j "$JOBS" --target fuzz_targets

root=$(pwd)
work="$root/$BUILD_DIR/fuzz/work"
failed=()
while read -r name max_len dict _; do
    case "$name" in '' | '#'*) continue ;; esac
    if [ -n "${FUZZ_TARGETS:-}" ] && [[ " $FUZZ_TARGETS " != *" $name "* ]]; then
        continue
    fi
    corpus="$work/corpus/$name"
    artifacts="$work/artifacts/$name"
    mkdir -p "$corpus" "$artifacts"
    # The seeds and every input that once broke the target, added to what earlier runs found.
    cp -f fuzz/corpus/"$name"/* "$corpus"/
    if [ -d "fuzz/regressions/$name" ]; then
        cp -f fuzz/regressions/"$name"/* "$corpus"/
    fi
    if [ -n "${FUZZ_RUNS:-}" ]; then
        limit=(-runs="$FUZZ_RUNS")
    else
        limit=(-max_total_time="$FUZZ_SECONDS")
    fi
    if [ -n "${dict:-}" ]; then
        limit+=(-dict="$root/fuzz/$dict")
    fi
    log="$work/$name.log"
    echo "== fuzz_$name (${limit[*]}, -max_len=$max_len)"
    started=$SECONDS
    # From inside the work folder, so that nothing lands in the working directory of the caller.
    if (cd "$work" && "$root/$BUILD_DIR/fuzz/fuzz_$name" "${limit[@]}" -max_len="$max_len" -timeout=10 \
        -print_final_stats=1 -artifact_prefix="$artifacts/" "$corpus" >"$log" 2>&1); then
        awk -v took=$((SECONDS - started)) '/stat::number_of_executed_units/ {runs=$2}
             /stat::average_exec_per_sec/ {rate=$2}
             END {printf "   %s executions in %d s, %s per second\n", runs, took, rate}' "$log"
    else
        echo "   FEHLER, siehe $log:"
        grep -E "ERROR|invariant broken|SUMMARY|runtime error" "$log" | head -5 | sed 's/^/   /'
        failed+=("$name")
    fi
done <fuzz/targets.txt

if [ ${#failed[@]} -gt 0 ]; then
    echo "Fuzz-Ziele mit Befund: ${failed[*]}"
    exit 1
fi
