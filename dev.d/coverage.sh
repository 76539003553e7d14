# ./dev coverage: what the unit tests and the saved inputs reach, written into docs/coverage.md.

# Over everything that the unit tests and the saved inputs run; written into docs/coverage.md.
coverage() {
    deps
    mkdir -p out
    cmake_build coverage vt_tests fuzz_todos
    rm -rf out/profiles
    LLVM_PROFILE_FILE=out/profiles/tests-%p out/coverage/vt_tests --gtest_brief=1 >out/coverage.log 2>&1 ||
        { tail -n 40 out/coverage.log; die "unit tests fail"; }
    objects=
    for t in $targets; do
        LLVM_PROFILE_FILE=out/profiles/$t "out/coverage/fuzz_$t" "fuzz/corpus/$t" >>out/coverage.log
        objects="$objects --object=out/coverage/fuzz_$t"
    done
    "llvm-profdata-$llvm" merge -o out/coverage.profile out/profiles/*
    # shellcheck disable=SC2086
    "llvm-cov-$llvm" export out/coverage/vt_tests $objects --instr-profile=out/coverage.profile \
        --summary-only --ignore-filename-regex='/(tests|fuzz|demo|php)/' >out/coverage.json
    "$PHP" -n dev.d/coverage.php "$llvm"
}
