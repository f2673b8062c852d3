#!/usr/bin/env bash
# Runs every fuzz target for a bounded time and prints how many inputs each tried.
#   scripts/fuzz.sh [SECONDS_PER_TARGET] [TARGET...]    (default 600 s each, all targets)
# Each target grows its corpus in build/linux-fuzz/fuzz/corpus/<target> from the seeds in
# fuzz/corpus/<target>; crash inputs are written to build/linux-fuzz/fuzz/crashes/. Two targets
# run at a time. The last line counts targets that ended without a crash.
set -uo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-600}
shift || true
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
    targets=(processor_state controller_state controller_queries notify process bus_arrangement)
fi

bash scripts/setup.sh || exit 1
cmake --preset linux-fuzz >/dev/null || exit 1
cmake --build --preset linux-fuzz >build/build-linux-fuzz.log 2>&1 || { tail -n 40 build/build-linux-fuzz.log; exit 1; }

out=build/linux-fuzz/fuzz
mkdir -p "$out/crashes" "$out/logs"

run_target() {
    local target=$1
    mkdir -p "$out/corpus/$target"
    "$out/${target}_fuzz" -max_total_time="$seconds" -timeout=20 -rss_limit_mb=2048 -print_final_stats=1 \
        -artifact_prefix="$out/crashes/$target-" "$out/corpus/$target" "fuzz/corpus/$target" \
        >"$out/logs/$target.log" 2>&1
    echo $? >"$out/logs/$target.status"
}

running=0
for target in "${targets[@]}"; do
    run_target "$target" &
    running=$((running + 1))
    if [ "$running" -ge 2 ]; then
        wait -n
        running=$((running - 1))
    fi
done
wait

passed=0
failed=0
total_runs=0
for target in "${targets[@]}"; do
    log="$out/logs/$target.log"
    status=$(cat "$out/logs/$target.status" 2>/dev/null || echo 1)
    runs=$(awk '/stat::number_of_executed_units/ {print $2}' "$log" | tail -n 1)
    corpus=$(find "$out/corpus/$target" -type f | wc -l)
    runs=${runs:-0}
    total_runs=$((total_runs + runs))
    if [ "$status" -eq 0 ]; then
        passed=$((passed + 1))
        printf '%-20s %12s inputs in %s s, corpus %s, no crash\n' "$target" "$runs" "$seconds" "$corpus"
    else
        failed=$((failed + 1))
        printf '%-20s %12s inputs in %s s, CRASH (see %s)\n' "$target" "$runs" "$seconds" "$log"
        grep -E "ERROR|runtime error|property broken|Test unit written" "$log" | head -n 5
    fi
done
echo "all targets: $total_runs inputs"
echo "fuzz: $passed passed, $failed failed"
[ "$failed" -eq 0 ]
