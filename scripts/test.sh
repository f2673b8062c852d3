#!/usr/bin/env bash
# Builds every target (native, native with sanitizers, Windows) and runs all tests: natively, and
# the Windows programs under Wine; then the threading tests under ThreadSanitizer and each fuzz
# target for a few seconds. The last line counts the tests of all runs.
set -uo pipefail
cd "$(dirname "$0")/.."

bash scripts/setup.sh || exit 1

presets=(linux linux-asan windows linux-tsan linux-fuzz)
passed=0
failed=0
status=0
mkdir -p build
for preset in "${presets[@]}"; do
    echo "== $preset"
    if ! cmake --preset "$preset" >"build/configure-$preset.log" 2>&1; then
        cat "build/configure-$preset.log"
        echo "configure of $preset failed"
        failed=$((failed + 1)); status=1; continue
    fi
    if ! cmake --build --preset "$preset" >"build/build-$preset.log" 2>&1; then
        grep -E -B2 -A12 "error|FAILED" "build/build-$preset.log" | head -n 80
        echo "build of $preset failed"
        failed=$((failed + 1)); status=1; continue
    fi
    ctest --preset "$preset" 2>&1 | tee "build/test-$preset.log"
    [ "${PIPESTATUS[0]}" -eq 0 ] || status=1
    summary=$(grep -E "tests passed, [0-9]+ tests? failed out of [0-9]+" "build/test-$preset.log" | tail -n 1)
    if [ -z "$summary" ]; then
        failed=$((failed + 1)); status=1; continue
    fi
    total=$(sed -E 's/.*out of ([0-9]+).*/\1/' <<<"$summary")
    bad=$(sed -E 's/.* ([0-9]+) tests? failed.*/\1/' <<<"$summary")
    passed=$((passed + total - bad))
    failed=$((failed + bad))
done

echo "tests: $passed passed, $failed failed"
exit $status
