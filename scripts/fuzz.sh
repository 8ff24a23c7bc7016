#!/usr/bin/env bash
# Builds the libFuzzer targets of tests/fuzz with clang (AddressSanitizer and
# UndefinedBehaviorSanitizer) in build-fuzz/ and runs each for SECONDS (default 30).
#   scripts/fuzz.sh [SECONDS]
# Seeds are collected on each run from examples/ and the YAML test suite in the shared project
# data (KESTRIX_SHARED_DIR, by default ../shared). What a target finds stays in its corpus,
# build-fuzz/fuzz/corpus/<target>/; a crash is kept as build-fuzz/fuzz/artifacts/<target>-*,
# which the target reads back when run with the file as argument.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-30}
source scripts/setup.sh # installs what is missing, clang and its libFuzzer among it

shared=${KESTRIX_SHARED_DIR:-$(cd .. && pwd)/shared}
build=build-fuzz
work=$build/fuzz
targets=(fuzz_test_bench fuzz_test_specification fuzz_round_trip fuzz_yaml_values)

CC=clang CXX=clang++ cmake -S . -B "$build" -DKESTRIX_FUZZ=ON -DKESTRIX_BUILD_TESTS=OFF \
  -DKESTRIX_SHARED_DIR="$shared" >/dev/null
cmake --build "$build" -j "$jobs" --target fuzz_all

# Seeds: the example test files and every input of the YAML test suite.
rm -rf "$work/seeds"
mkdir -p "$work/seeds" "$work/artifacts"
cp examples/*.yaml "$work/seeds/"
if [ -d "$shared/yaml-test-suite" ]; then
  find "$shared/yaml-test-suite" -name in.yaml | while read -r f; do
    name=${f#"$shared/yaml-test-suite/"}
    cp "$f" "$work/seeds/suite-${name//\//-}"
  done
fi

export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
failed=()
summary=()
for t in "${targets[@]}"; do
  mkdir -p "$work/corpus/$t"
  log="$work/$t.log"
  echo "== $t: ${seconds} s"
  if ! "$build/tests/fuzz/$t" "$work/corpus/$t" "$work/seeds" -max_total_time="$seconds" -timeout=10 \
    -dict=tests/fuzz/testfile.dict -artifact_prefix="$work/artifacts/$t-" -print_final_stats=1 >"$log" 2>&1; then
    failed+=("$t")
    tail -n 60 "$log"
  fi
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
  secs=$(sed -n 's/^Done [0-9]* runs in \([0-9]*\) second.*/\1/p' "$log" | tail -n 1)
  summary+=("$(printf '%-24s %10s runs in %4s s, %6s exec/s' "$t" "${runs:-?}" "${secs:-?}" \
    "$([ -n "${runs:-}" ] && [ "${secs:-0}" -gt 0 ] && echo $((runs / secs)) || echo '?')")")
done
printf '%s\n' "${summary[@]}"
if [ ${#failed[@]} -gt 0 ]; then
  echo "fuzzing found faults in: ${failed[*]} (inputs in $work/artifacts/)"
  exit 1
fi
