# ./dev fuzz, and the replay of the saved inputs in ./dev test.

# The saved inputs, each a test of what its target claims.
replay() {
    say "saved fuzz inputs, asan"
    cmake_build asan fuzz_todos
    for t in $targets; do
        log=out/replay-$t.log
        if "out/asan/fuzz_$t" "fuzz/corpus/$t" >"$log" 2>&1; then
            add 1
        else
            tail -n 20 "$log"
            add 0 1
        fi
    done
}

# Inputs that bring something new stay in out/corpus, those that fail come to out/finds: what such
# an input shows belongs into a table of the unit tests.
fuzz() {
    deps
    in_memory
    mkdir -p out/finds
    cmake_build fuzz fuzz_todos
    [ "${1:-all}" = all ] || targets=$1
    for t in $targets; do
        say "fuzzing $t, ${2:-60} seconds"
        mkdir -p "out/corpus/$t"
        log=out/fuzz-$t.log
        nice "out/fuzz/fuzz_$t" -max_total_time="${2:-60}" -max_len=4096 -timeout=30 \
            -rss_limit_mb=1500 -print_final_stats=1 -dict="fuzz/$t.dict" \
            -artifact_prefix="out/finds/$t-" "out/corpus/$t" "fuzz/corpus/$t" >"$log" 2>&1 ||
            { grep -v '^#' "$log" | tail -n 40; die "a find of $t: see $log"; }
        grep -E '^Done|peak_rss' "$log"
    done
}
