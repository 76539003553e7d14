# ./dev test: its parts and their counts.

# The number before a word on the lines of a log: count LOG 'PATTERN' with the number as \1.
count() { sed -n "s/$2/\\1/p" "$1" | tail -n 1; }

# Each kind of test adds to these.
passed=0 failed=0 skipped=0
add() {
    passed=$((passed + ${1:-0})) failed=$((failed + ${2:-0})) skipped=$((skipped + ${3:-0}))
}

# unit PRESET [FILTER]
unit() {
    say "unit tests, $1${2:+: $2}"
    cmake_build "$1" vt_tests
    log=out/unit-$1.log
    status=0
    "out/$1/vt_tests" --gtest_brief=1 --gtest_filter="${2:-*}" >"$log" 2>&1 || status=$?
    # The thread sanitizer does not start where addresses are laid out at random too widely.
    if grep -q 'ThreadSanitizer: unexpected memory mapping' "$log"; then
        status=0
        setarch -R "out/$1/vt_tests" --gtest_brief=1 --gtest_filter="${2:-*}" >"$log" 2>&1 || status=$?
    fi
    tail -n 40 "$log"
    p=$(count "$log" '^\[  PASSED  \] \([0-9]*\) tests*\.$')
    f=$(count "$log" '^ *\([0-9][0-9]*\) FAILED TESTS\{0,1\}$')
    # A run that broke off, or that ran nothing, failed.
    [ "$status" = 0 ] && [ "${p:-0}" -gt 0 ] || f=${f:-1}
    add "$p" "$f" "$(count "$log" '^\[  SKIPPED \] \([0-9]*\) tests*.*$')"
}

# run_phpt LOG ARGUMENTS: the engine's own test runner, with the extension loaded. Whatever neither
# passed nor was skipped has failed, leak reports included.
run_phpt() {
    log=$root/out/$1.log
    shift
    "$PHP" -n "$out_php/run-tests.php" -n -q -P -p "$(command -v "$PHP")" --show-diff -j"$jobs" \
        -d "extension=$extension" "$@" >"$log" 2>&1 || true
    grep -E '^(FAIL|BORK|WARN|LEAK|SKIP|[0-9]{3}[+-])' "$log" || true
    p=$(count "$log" '^Tests passed *: *\([0-9]*\).*')
    s=$(count "$log" '^Tests skipped *: *\([0-9]*\).*')
    t=$(count "$log" '^Number of tests *: *\([0-9]*\).*')
    [ "${t:-0}" -gt 0 ] || { cat "$log"; t=1; }
    add "${p:-0}" $((t - ${p:-0} - ${s:-0})) "$s"
}

phpt() {
    build
    say "PHP tests"
    run_phpt phpt "$root/tests/phpt"
}

# consolidates FOLDER: FOLDER/logs into FOLDER/dat and FOLDER/ponto, by the clock of the Azores.
consolidates() {
    # shellcheck disable=SC2016
    TZ=Atlantic/Azores "$PHP" -n -d "extension=$extension" -r '$m = new vt_mrel();
        $m->setLogDir("$argv[1]/logs") && $m->setDataDir("$argv[1]/dat") && $m->consolidate("$argv[1]/ponto");' "$1"
}

# run_phpunit NAME FOLDER: the tests of a folder, which out/NAME.log tells of. Not with -n: phpunit asks for
# modules of its own.
run_phpunit() {
    junit=out/$1/junit.xml log=out/$1.log status=0
    "$PHP" -d "extension=$extension" "$(command -v phpunit)" --bootstrap "$2/carrega.php" --do-not-cache-result \
        --fail-on-warning --fail-on-risky --log-junit "$junit" "$2" >>"$log" 2>&1 || status=$?
    tail -n 40 "$log"
    t=0 f=0 s=0
    if [ -f "$junit" ]; then
        attribute() { sed -n "/<testsuite /{s/.* $1=\"\([0-9]*\)\".*/\1/p;q}" "$junit"; }
        t=$(attribute tests) f=$(($(attribute failures) + $(attribute errors))) s=$(attribute skipped)
    fi
    # A run that broke off, or that ran nothing, failed.
    [ "$status" = 0 ] && [ "$t" -gt "$s" ] || [ "$f" -gt 0 ] || f=1 t=$((t + 1))
    add $((t - f - s)) "$f" "$s"
}

# What is written in PHP over the extension, on five days of generated mail.
library() {
    build
    cmake_build release gera_logs
    # shellcheck disable=SC2086
    need $test_packages
    say "PHP library"
    mail=$root/out/phpunit
    rm -rf "$mail"
    mkdir -p "$mail/dat"
    TZ=Atlantic/Azores out/release/gera_logs "$mail/logs" 2026-03-26 --dias 5 --mensagens 1500 \
        --usuarios 30 >out/phpunit.log
    consolidates "$mail"
    VT_EXTENSAO=$extension VT_DADOS=$mail run_phpunit phpunit tests/php
}

# test_all [PART ...]: these parts alone.
test_all() {
    deps
    mkdir -p out
    # shellcheck disable=SC2086
    [ $# -gt 0 ] || need $test_packages $pages_packages $fleet_packages $deb_packages
    [ $# -gt 0 ] || set -- asan replay tsan phpt phpunit painel frota deb faults check static
    for part in "$@"; do
        case $part in
            asan) unit asan ;;
            replay | faults) "$part" ;;
            tsan) unit tsan 'VeltoStringThreads.*' ;;
            phpt) phpt ;;
            phpunit) library ;;
            painel) panel ;;
            frota) fleet ;;
            deb) deb_test ;;
            check | static) if "$part"; then add 1; else add 0 1; fi ;;
            *) die "there is no test '$part'" ;;
        esac
    done
    counts
}

# The end of every run of tests.
counts() {
    printf '\n%d passed, %d failed, %d skipped\n' "$passed" "$failed" "$skipped"
    [ "$failed" = 0 ] && [ "$skipped" = 0 ]
}
