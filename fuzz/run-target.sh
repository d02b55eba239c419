#!/bin/sh
# run-target.sh SECONDS TARGET: fuzzes one target of the fuzz preset, and goes on when it finds
# something. Prints its name, runs, crashes, hangs, runs out of memory, and lines reached.
# Inputs that reach something new are kept in build/fuzz/inputs/TARGET for the next time.
set -eu
seconds=$1
target=$2
build=build/fuzz
program=$build/fuzz/fuzz-$target
inputs=$build/inputs/$target
findings=$build/findings/$target
log=$build/logs/$target.log
corpus=fuzz/corpus/$target
mkdir -p "$inputs" "$findings" "$build/logs"
rm -f "$findings"/*

read -r length sources <<END
$(sed -n "s/^$target //p" "$build/fuzz/targets.txt")
END
set -- -max_len="$length" -timeout=5 -rss_limit_mb=2048
dictionary=fuzz/dictionaries/$target.dict
[ ! -f "$dictionary" ] || set -- "$@" -dict="$dictionary"

# -fork: findings end a child process, not the fuzzing.
LLVM_PROFILE_FILE=/dev/null "$program" "$@" -fork=1 -ignore_crashes=1 -ignore_timeouts=1 \
    -ignore_ooms=1 -max_total_time="$seconds" -artifact_prefix="$findings/" "$inputs" "$corpus" \
    >"$log" 2>&1 || true
# The last line of progress: "#RUNS: cov: ... oom/timeout/crash: 0/0/0 time: ..."
progress=$(sed -n 's|^#\([0-9]*\): .*oom/timeout/crash: \([0-9]*\)/\([0-9]*\)/\([0-9]*\) .*|\1 \4 \3 \2|p' "$log" | tail -n 1)
if [ -z "$progress" ]; then
    echo "$target did not run: see $log" >&2
    exit 1
fi

profile=$TMPDIR/$target.profraw
LLVM_PROFILE_FILE=$profile "$program" "$@" -runs=0 "$inputs" "$corpus" >>"$log" 2>&1 || true
lines=-
if [ -f "$profile" ]; then
    llvm-profdata merge -o "$profile.merged" "$profile"
    lines=$(llvm-cov export -format=lcov -instr-profile="$profile.merged" "$program" |
        awk -v sources="$sources" -v unreached="$build/logs/$target.unreached" '
            BEGIN { split(sources, names, " "); printf "" >unreached }
            /^SF:/ {
                source = ""
                for (i in names)
                    if (index($0 "\n", "/" names[i] "\n")) source = names[i]
            }
            /^DA:/ && source != "" {
                split(substr($0, 4), line, ",")
                ++total
                if (line[2] > 0) ++reached
                else print source ":" line[1] >unreached
            }
            END { if (total) printf "%.1f%%", 100 * reached / total }')
fi

# shellcheck disable=SC2086 # four numbers
set -- $progress
printf '%-10s %12d %8d %6d %14d %14s\n' "$target" "$1" "$2" "$3" "$4" "$lines"
