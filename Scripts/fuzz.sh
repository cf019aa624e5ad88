#!/usr/bin/env bash
# Feeds each target of the fuzzer, which must be built, for as many minutes, and prints a line for each: how often it ran,
# how often in a second, and how many places of the code its inputs reach. As many at once as there are processors. The
# exit code is 1 if an input broke something; such inputs are in build/linux-fuzz/finds.
#
#   Scripts/fuzz.sh MINUTES [TARGET...]
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
cd "$root"
program=build/linux-fuzz/Tests/Fuzz/FuzzTargets
seeds=Tests/Data/Fuzz
work=build/linux-fuzz
seconds=$(($1 * 60))
shift
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
    for folder in "$seeds"/*/; do
        targets+=("$(basename "$folder")")
    done
fi
mkdir -p "$work/finds"

feed() # TARGET
{
    local corpus=$work/corpus/$1 options=()
    mkdir -p "$corpus"
    if [ -f "$seeds/$1.dict" ]; then
        options+=(-dict="$seeds/$1.dict")
    fi
    # A picture may take 512 MiB; the sanitizer needs an eighth more, and keeps what was freed for a while.
    ASAN_OPTIONS=quarantine_size_mb=16:allocator_may_return_null=1 nice -n 19 "$program" --target="$1" \
        -max_total_time="$seconds" -timeout=20 -rss_limit_mb=2500 -malloc_limit_mb=1000 -max_len=8192 \
        -print_final_stats=1 -artifact_prefix="$root/$work/finds/$1-" "${options[@]}" "$corpus" "$seeds/$1" \
        >"$work/$1.log" 2>&1
}

report() # TARGET
{
    local log=$work/$1.log runs rate reached all
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    rate=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log")
    reached=$(sed -n 's/.* cov: \([0-9]*\) .*/\1/p' "$log" | tail -1)
    all=$(sed -n 's/^INFO: Loaded .*(\([0-9]*\) inline 8-bit counters).*/\1/p' "$log" | head -1)
    printf '%-18s %10s runs %8s/s  %6s of %s places\n' "$1" "${runs:-?}" "${rate:-?}" "${reached:-?}" "${all:-?}"
}

failed=()
running=()
finish() # waits for the first of those that run
{
    local target=${running[0]%:*} process=${running[0]#*:}
    running=("${running[@]:1}")
    wait "$process" || failed+=("$target")
    report "$target"
}
for target in "${targets[@]}"; do
    if [ ${#running[@]} -ge "$(nproc)" ]; then
        finish
    fi
    feed "$target" &
    running+=("$target:$!")
done
while [ ${#running[@]} -gt 0 ]; do
    finish
done
for target in "${failed[@]}"; do
    echo "$target failed; its log is $work/$target.log:" >&2
    grep -E '^(SUMMARY|==[0-9]+==ERROR|Doesn|artifact_prefix|.*runtime error)' "$work/$target.log" >&2 || true
done
[ ${#failed[@]} -eq 0 ]
