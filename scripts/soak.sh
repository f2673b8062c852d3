#!/usr/bin/env bash
# The long versions of the load tests, on the optimised Linux build:
#   scripts/soak.sh [SOAK_SECONDS] [LOAD_SECONDS] [CYCLES]   (defaults 3600, 60, 1000)
# an hour of 48 kHz full-scale noise with random automation on every block, 32 instances each
# processing a minute of audio on two threads with their sender threads, and 1,000 module
# entry/exit cycles, each making, using and taking down an instance. Fails when a test fails or
# when the median block time of the soak's last tenth exceeds that of its first tenth by more than
# half (a denormal or leak slow-down). The last line counts the tests.
set -uo pipefail
cd "$(dirname "$0")/.."

export VELMORAN_SOAK_SECONDS=${1:-3600}
export VELMORAN_LOAD_SECONDS=${2:-60}
export VELMORAN_LOAD_CYCLES=${3:-1000}

bash scripts/setup.sh || exit 1
cmake --preset linux >/dev/null || exit 1
cmake --build --preset linux --target plugin_load_test plugin_module_cycle_test >build/build-soak.log 2>&1 ||
    { tail -n 40 build/build-soak.log; exit 1; }

module=build/linux/plugin/Velmoran.so
passed=0
failed=0
for program in plugin_load_test plugin_module_cycle_test; do
    if "build/linux/tests/plugin/$program" "$module" | tee "build/soak-$program.log"; then
        passed=$((passed + 1))
    else
        failed=$((failed + 1))
    fi
done

ratio=$(sed -nE 's/.*late\/early median ratio ([0-9.]+).*/\1/p' build/soak-plugin_load_test.log)
echo
grep -h "\[ figures  \]" build/soak-plugin_load_test.log build/soak-plugin_module_cycle_test.log
if [ -z "$ratio" ] || awk -v r="$ratio" 'BEGIN { exit !(r > 1.5) }'; then
    echo "block time drifted (late/early median ratio ${ratio:-missing})"
    failed=$((failed + 1))
else
    passed=$((passed + 1))
fi
echo "soak: $passed passed, $failed failed"
[ "$failed" -eq 0 ]
