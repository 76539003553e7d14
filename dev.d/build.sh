# Debian's packages, and the builds: the extension by phpize, everything else by cmake.

as_root() {
    if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

# need PACKAGE ...: installs those that are missing.
need() {
    missing=
    for p in "$@"; do
        case $(dpkg-query -W -f '${db:Status-Status}' "$p" 2>/dev/null) in
            installed) ;;
            *) missing="$missing $p" ;;
        esac
    done
    [ -n "$missing" ] || return 0
    say "installing$missing"
    as_root apt-get update -q
    # shellcheck disable=SC2086
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -qy --no-install-recommends $missing
}

# shellcheck disable=SC2086
deps() { need $packages; }

# need_npm FOLDER PACKAGE@VERSION ...: packages of npm, into that folder. Any node and npm that are there will
# do; else Debian's.
need_npm() {
    # shellcheck disable=SC2086
    if ! command -v node >/dev/null || ! command -v npm >/dev/null; then need $npm_packages; fi
    folder=$1
    shift
    mkdir -p "$folder"
    npm install --prefix "$folder" --silent --no-audit --no-fund --no-package-lock "$@"
}

# phpize writes beside config.m4, so the sources are linked into the folder it works in.
link_sources() {
    mkdir -p "$out_php"
    find "$out_php" -type l -delete
    for d in $core php; do
        mkdir -p "$out_php/$d"
        for f in "$root/$d"/*; do
            [ ! -e "$f" ] || ln -s "$f" "$out_php/$d/"
        done
    done
    ln -s "$root/config.m4" "$out_php/"
    find $core php -type f | sort >"$out_php/sources"
}

build() {
    deps
    say "building the extension"
    # A file that has gone would be missed by the rules that an earlier build wrote.
    [ "$out_php/Makefile" -nt config.m4 ] && find $core php -type f | sort | cmp -s - "$out_php/sources" ||
        rm -rf "$out_php"
    link_sources
    (
        cd "$out_php"
        exec >>build.log 2>&1
        [ -f Makefile ] || { "$PHPIZE" && ./configure --with-php-config="$PHP_CONFIG"; }
        make -j"$jobs"
    ) || { grep -n -A5 ' error:\|\*\*\*' "$out_php/build.log" >&2; die "the extension does not build"; }
    ln -sfn "$(command -v "$PHP")" "$out_php/modules/php"  # what bin/vtmrel starts
}

# cmake_build PRESET [TARGET ...]
cmake_build() {
    preset=$1
    shift
    cmake --preset "$preset" >"out/cmake-$preset.log" 2>&1 || { cat "out/cmake-$preset.log"; exit 1; }
    cmake --build --preset "$preset" -j "$jobs" ${1:+--target "$@"} >>"out/cmake-$preset.log" 2>&1 ||
        { cat "out/cmake-$preset.log"; exit 1; }
}
