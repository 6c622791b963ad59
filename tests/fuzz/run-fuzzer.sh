#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs a fuzzer from its seeds, with the limits that its test has.
# Usage: run-fuzzer.sh BUILD-DIRECTORY NAME SECONDS [LIBFUZZER-ARGUMENT...]
# The corpus that it finds is left in BUILD-DIRECTORY/fuzz/NAME, and an input that makes it fail too, as NAME-*.
set -euo pipefail

build=$(readlink -f -- "$1")
name=$2
seconds=$3
shift 3
seeds=$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")/corpus/$name
corpus=$build/fuzz/$name

# With what an earlier run has found, a seed would not lead the same way.
rm -rf -- "$corpus"
mkdir -p -- "$corpus"

# The memory that AddressSanitizer keeps back would hide what grows; long call stacks of each allocation cost much.
export ASAN_OPTIONS=quarantine_size_mb=16:malloc_context_size=10
export UBSAN_OPTIONS=print_stacktrace=1
# With little stack, what needs more of it the longer the input is shows with a short one.
ulimit -s 160
exec "$build/bin/$name-fuzzer" "$corpus" "$seeds" -seed=1 -max_total_time="$seconds" -max_len=1024 -timeout=10 \
    -rss_limit_mb=512 -malloc_limit_mb=64 -print_final_stats=1 -artifact_prefix="$build/fuzz/$name-" "$@"
