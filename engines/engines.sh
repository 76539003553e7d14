# The tests on every engine that the extension is made for: sourced by ./dev engines [NAME ...].
# Each engine_NAME installs what it needs, shows that the engine is the one meant, and adds to the counts.
# All that is built is in out/engines, and kept: a second run builds only what changed.

here=$root/out/engines
# The engine's own tests that call every function and method there is.
own='Zend/tests/arginfo_zpp_mismatch Zend/tests/arginfo_zpp_mismatch_strict
     Zend/tests/instantiate_all_classes ext/reflection/tests/internal_parameter_default_value/check_all'

# --- sources and systems ----------------------------------------------------------------------

# debian_sources TYPE SUITE: this machine's own Debian sources, a line each, for that release.
debian_sources() {
    apt-get indextargets --format "$1"' $(REPO_URI) $(RELEASE) $(COMPONENT) $(ORIGIN)' 'Created-By: Packages' |
        sed -n "/ $release/s/ Debian\$//p" | sed "s/ $release/ $2/" | sort -u
}

# The engine's source as Debian has it, unpacked in $source. A mirror may lack the newest version that it
# lists, so the newest that downloads is taken.
php_source() {
    mkdir -p "$here/source/lists/partial" "$here/source/parts"
    source=$(find "$here/source" -maxdepth 1 -type d -name "php$php-*")
    [ -z "$source" ] || return 0
    need dpkg-dev
    say "source of the engine"
    debian_sources deb-src "$release" >"$here/source/parts/source.list"
    (
        cd "$here/source"
        set -- -q -o Dir::Etc::sourcelist=/dev/null -o Dir::Etc::sourceparts="$PWD/parts" \
            -o Dir::State::lists="$PWD/lists" -o Dir::Cache="$PWD/cache" -o APT::Sandbox::User=root
        apt-get "$@" update
        for version in $(apt-cache "$@" showsrc "php$php" | sed -n 's/^Version: //p' | sort -rVu); do
            if apt-get "$@" source "php$php=$version"; then break; fi
        done
    ) >"$here/source.log" 2>&1 || true
    source=$(find "$here/source" -maxdepth 1 -type d -name "php$php-*")
    [ -n "$source" ] || { tail "$here/source.log"; die "no source of php$php could be had"; }
}

# bootstrap FOLDER SUITE ARCHITECTURE [PACKAGES]: a bare Debian of that release there, with this one's sources.
bootstrap() {
    [ ! -f "$1/etc/vt_mrel-ready" ] || return 0
    need debootstrap
    say "bare $2 for $3, in ${1#"$root/"}"
    as_root rm -rf "$1"
    mkdir -p "$here/debs"
    mirror=$(debian_sources deb "$2" | awk -v suite="$2" '$3 == suite { print $2; exit }')
    as_root debootstrap --variant=minbase --arch="$3" --cache-dir="$here/debs" ${4:+--include="$4"} \
        "$2" "$1" "$mirror" >"$1.log" 2>&1 || { tail "$1.log"; die "debootstrap failed"; }
    debian_sources deb "$2" | as_root tee "$1/etc/apt/sources.list" >/dev/null
    # Settings for mirrors that are no longer updated hold there too.
    apt-config dump Acquire::Check-Valid-Until Acquire::Check-Date |
        as_root tee "$1/etc/apt/apt.conf.d/90mirror" >/dev/null
    # A mirror may be incomplete for a rarer architecture; the release itself was had just now.
    if ! inside "$1" 'apt-get update -q' >>"$1.log" 2>&1; then
        echo "not all of this machine's sources serve $3: the release alone must do"
        debian_sources deb "$2" | grep " $2 " | as_root tee "$1/etc/apt/sources.list" >/dev/null
    fi
    # npm is asked where this machine asks it, and trusts whom this machine trusts.
    if command -v npm >/dev/null; then
        echo "registry=$(npm config get registry)" | as_root tee "$1/root/.npmrc" >/dev/null
        cafile=$(npm config get cafile)
        if [ -f "$cafile" ]; then
            as_root cp "$cafile" "$1/etc/npm-ca.pem"
            echo cafile=/etc/npm-ca.pem | as_root tee -a "$1/root/.npmrc" >/dev/null
        fi
    fi
    as_root touch "$1/etc/vt_mrel-ready"
}

# inside FOLDER COMMAND: runs it as root in that system. The mounts end with the command.
inside() {
    as_root unshare --mount --pid --fork --kill-child sh -euc '
        mount -t proc proc "$1/proc"
        mount -t tmpfs -o mode=755 dev "$1/dev"
        for n in null zero full random urandom tty; do
            : >"$1/dev/$n"
            mount --bind "/dev/$n" "$1/dev/$n"
        done
        mkdir "$1/dev/pts"
        mkdir -m 1777 "$1/dev/shm"
        mount -t devpts -o newinstance,ptmxmode=0666 pts "$1/dev/pts"
        ln -s pts/ptmx "$1/dev/ptmx"
        ln -s /proc/self/fd "$1/dev/fd"
        exec env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin chroot "$1" sh -euc "$2"
    ' sh "$1" "$2"
}

# --- the runs on one engine -------------------------------------------------------------------

# probe WHAT EXPRESSION [OPTIONS]: says which engine this is; dies when the expression is not true in it.
probe() {
    what=$1 expression=$2
    shift 2
    "$PHP" -n "$@" -r "echo PHP_VERSION, PHP_ZTS ? ' ZTS' : ' NTS', PHP_DEBUG ? ' debug' : '', ', ',
        PHP_INT_SIZE * 8, \" bits\n\"; exit($expression ? 0 : 1);" || die "this engine is not $what"
}

# suite NAME [OPTIONS]: all PHP tests, and the engine's own tests that call every method there is.
suite() {
    name=$1
    shift
    run_phpt "engines/$name" "$@" "$root/tests/phpt"
    php_source
    rm -rf "$here/own"
    mkdir -p "$here/own"
    for t in $own; do cp "$source/$t.phpt" "$here/own/"; done
    cp "$source/Zend/tests/arginfo_zpp_mismatch.inc" "$here/own/"
    run_phpt "engines/$name-own" "$@" "$here/own"
}

engine_plain() {
    build
    say "the packaged engine"
    probe packaged '!PHP_ZTS && !PHP_DEBUG'
    suite plain
}

engine_opcache() {
    need "php$php-opcache"
    build
    say "the packaged engine, with opcache"
    set -- -d zend_extension=opcache -d opcache.enable_cli=1
    probe 'run with opcache' 'opcache_get_status()["opcache_enabled"]' "$@"
    suite opcache "$@"
    say "the packaged engine, with opcache and preloaded code"
    # shellcheck disable=SC2016
    set -- "$@" -d "opcache.preload=$root/engines/preload.php" -d "opcache.preload_user=$(id -un)"
    probe 'run with preloaded code' 'is_int((new Preloaded())->total())' "$@" -d "extension=$extension"
    suite preload "$@"
}

# By function: all is compiled before it runs. By trace: the test runner sets the thresholds to 1.
engine_jit() {
    need "php$php-opcache"
    build
    for mode in function tracing; do
        say "the packaged engine, with JIT by $mode"
        set -- -d zend_extension=opcache -d opcache.enable_cli=1 -d "opcache.jit=$mode" \
            -d opcache.jit_buffer_size=32M
        probe 'run with JIT' 'opcache_get_status()["jit"]["on"]' "$@"
        suite "jit-$mode" "$@"
    done
}

# Only the tests that take less than two seconds without it.
engine_valgrind() {
    need valgrind
    build
    say "the packaged engine, under valgrind"
    probe packaged '!PHP_ZTS && !PHP_DEBUG'
    before="$passed $failed $skipped"
    run_phpt engines/valgrind-times --show-slow 2000 "$root/tests/phpt"
    # shellcheck disable=SC2086
    set -- $before
    passed=$1 failed=$2 skipped=$3
    sed -n 's/^([0-9.]* s) .*\[\(.*\)\]$/\1/p' "$here/valgrind-times.log" | sort >"$here/long"
    find tests/phpt -name '*.phpt' | sort | comm -23 - "$here/long" >"$here/short"
    echo "$(wc -l <"$here/short") short tests; $(wc -l <"$here/long") take two seconds or more"
    # shellcheck disable=SC2046
    VALGRIND_OPTS="--trace-children-skip=*/chroot,*/ldd --leak-check=full --show-leak-kinds=definite --errors-for-leak-kinds=definite \
        --suppressions=$root/engines/engines.supp" \
        run_phpt engines/valgrind -m $(cat "$here/short")
}

zts_build() {
    need autoconf bison g++ libtool make pkg-config re2c
    php_source
    say "building a thread-safe debug engine"
    rm -rf "$here/zts"
    mkdir -p "$here/zts"
    cp -r "$source" "$here/zts/source"
    (
        cd "$here/zts/source"
        ./buildconf --force
        # The tests fork; the packaged engine has that built in.
        ./configure --disable-all --enable-zts --enable-debug --enable-cli --enable-pcntl \
            --prefix="$here/zts"
        make -j"$jobs"
        make install
        # Debian's phpize looks for libtool's macros below its own prefix.
        mkdir -p "$here/zts/share"
        ln -s /usr/share/aclocal "$here/zts/share/aclocal"
    ) >"$here/zts.log" 2>&1 || { tail "$here/zts.log"; die "the engine does not build"; }
    touch "$here/zts/ready"
}

engine_zts() {
    [ -f "$here/zts/ready" ] || zts_build
    (
        PHP=$here/zts/bin/php PHPIZE=$here/zts/bin/phpize PHP_CONFIG=$here/zts/bin/php-config
        out_php=$here/zts/extension
        extension=$out_php/modules/vt_mrel.so
        passed=0 failed=0 skipped=0
        build
        say "a thread-safe debug engine"
        probe 'thread-safe and debug' 'PHP_ZTS && PHP_DEBUG'
        suite zts
        echo "$passed $failed $skipped" >"$here/zts.counts"
    )
    # shellcheck disable=SC2046
    add $(cat "$here/zts.counts")
}

# --- whole systems ----------------------------------------------------------------------------

# counts_of LOG: adds the counts that end a ./dev test; none is a failure.
counts_of() {
    # shellcheck disable=SC2046
    set -- $(sed -n 's/^\([0-9]*\) passed, \([0-9]*\) failed, \([0-9]*\) skipped$/\1 \2 \3/p' "$1" | tail -n 1)
    add "${1:-0}" "${2:-1}" "${3:-0}"
}

# Unit and PHP tests in 32 bits, and the same day files from the same logs. The thread sanitizer has no
# 32 bits, and what the house checks look at is the same.
engine_i386() {
    need "php$php-opcache"
    build
    cmake_build release gera_logs
    bootstrap "$here/i386" "$release" i386
    say "32 bits"
    as_root mkdir -p "$here/i386/root/vt_mrel"
    as_root find "$here/i386/root/vt_mrel" -mindepth 1 -maxdepth 1 ! -name out -exec rm -rf {} +
    find . -mindepth 1 -maxdepth 1 ! -name out ! -name .git -print0 | tar -c --null -T - -f - |
        as_root tar -x -f - -C "$here/i386/root/vt_mrel" --no-same-owner
    inside "$here/i386" 'cd /root/vt_mrel && ./dev test asan phpt' >"$here/i386-test.log" 2>&1 || true
    tail -n 3 "$here/i386-test.log"
    counts_of "$here/i386-test.log"
    if same_days; then add 1; else add 0 1; fi
}

# Consolidates three days of logs with every kind of line, here and in 32 bits.
same_days() {
    export TZ=America/Sao_Paulo
    rm -rf "$here/days" "$here/i386/root/days"
    mkdir -p "$here/days"
    out/release/gera_logs "$here/days/logs" 2026-03-10 --dias 3 --mensagens 20000 --crlf 0.05 \
        --estranhas 0.01 --partem-dia 0.00001
    as_root cp -r "$here/days" "$here/i386/root/days"
    # shellcheck disable=SC2016
    code='$m = new vt_mrel(); $m->setLogDir("logs"); $m->setDataDir("dat"); $m->consolidate("last");'
    (cd "$here/days" && "$PHP" -n -d "extension=$extension" -r "$code")
    inside "$here/i386" "export TZ=$TZ; cd /root/days; php$php -n -r 'exit(PHP_INT_SIZE == 4 ? 0 : 1);'
        php$php -n -d extension=/root/vt_mrel/out/php/modules/vt_mrel.so -r '$code'"
    unset TZ
    n=$(find "$here/days/dat" -name '*.txt' -size +0 | wc -l)
    echo "$n day files"
    [ "$n" -ge 6 ] && diff -r "$here/days" "$here/i386/root/days"
}

# bare NAME SUITE: what a new user does first, in a bare system with only git and apt, from a clean clone.
bare() {
    as_root rm -rf "$here/$1"
    bootstrap "$here/$1" "$2" "$(dpkg --print-architecture)" git
    as_root git clone -q --no-hardlinks "$root" "$here/$1/root/vt_mrel"
    for command in demo test; do
        say "./dev $command in a bare $2"
        begun=$(date +%s)
        inside "$here/$1" "cd /root/vt_mrel && ./dev $command" >"$here/$1-$command.log" 2>&1 ||
            { echo "FAILED: ./dev $command"; add 0 1; }
        tail -n 12 "$here/$1-$command.log"
        echo "$(($(date +%s) - begun)) seconds"
    done
    counts_of "$here/$1-test.log"
}

engine_fresh() { bare fresh bookworm; }

engine_trixie() { bare trixie trixie; }

. "$root/engines/pacotes.sh"

# ----------------------------------------------------------------------------------------------

# run_engine NAME: one engine, and a line of its counts for the end.
run_engine() {
    was_passed=$passed was_failed=$failed was_skipped=$skipped
    "engine_$1"
    table="$table$(printf '%-9s %5d passed, %d failed, %d skipped' "$1" $((passed - was_passed)) \
        $((failed - was_failed)) $((skipped - was_skipped)))
"
}

mkdir -p "$here"
table=
[ $# -gt 0 ] || set -- plain opcache jit valgrind zts i386 fresh trixie pacotes
for engine in "$@"; do
    case $engine in
        plain | opcache | jit | valgrind | zts | i386 | fresh | trixie | pacotes) run_engine "$engine" ;;
        *) die "there is no engine '$engine'" ;;
    esac
done
say 'all engines'
printf '%s' "$table"
[ "$failed" = 0 ]
