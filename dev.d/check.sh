# ./dev check: house checks and static checks; and the commands that write what some of them compare with.

sources() { find $core php tests faults fuzz bench demo -name '*.cpp' -o -name '*.h' | grep -v _arginfo.h | sort; }

check_ascii() { ! LC_ALL=C grep -nP '[^\x00-\x7F]' $(sources); }

check_format() { "clang-format-$llvm" --dry-run -Werror $(sources); }

# Every include against docs/floors.txt, which says the rule.
check_floors() {
    grep -HE '^#include "(misc|borland|common|php)/' $(find $core php -name '*.cpp' -o -name '*.h') |
        awk -F'[:"]' '
            function folder(f) { sub(/[^\/]*$/, "", f); return f }
            function name(f) { sub(/.*\//, "", f); sub(/\..*/, "", f); return f }
            function class(f) { f = name(f); sub(/_[a-z]*$/, "", f); return f }
            function entry(f) { return folder(f) in at ? folder(f) : name(f) in at ? name(f) : class(f) }
            function within(d, n) {
                if (!(d in low) || n + 0 < low[d]) low[d] = n + 0
                if (n + 0 > high[d] + 0) high[d] = n + 0
            }
            function floor(f) {
                met[entry(f)] = 1
                if (entry(f) in at) return at[entry(f)]
                print "docs/floors.txt lacks " f
                bad = 1
                return 99
            }
            FILENAME ~ /floors/ {
                sub(/#.*/, "")
                n = split($0, word, " ")
                for (i = 2; i <= n; i++) at[word[i]] = word[1]
                next
            }
            {
                from = floor($1); to = floor($3)
                within(folder($1), from); within(folder($3), to)
                if (class($1) == class($3) || (folder($1) in at && folder($1) == folder($3))) next
                if (to >= from) { print $1 " (floor " from ") includes " $3 " (floor " to ")"; bad = 1 }
            }
            END {
                for (a in low) for (b in low) if (a < b && low[a] <= high[b] && low[b] <= high[a]) {
                    print a " and " b " share floors"; bad = 1
                }
                for (e in at) if (!(e in met)) { print "docs/floors.txt names " e ", which nothing includes"; bad = 1 }
                exit bad
            }' docs/floors.txt -
}

# Both builds name exactly the sources that are there.
check_lists() {
    ok=0
    for f in $(find $core php -name '*.cpp'); do
        grep -q "^ *$f\$" config.m4 || { echo "config.m4 lacks $f"; ok=1; }
        case $f in
            php/*) ;;
            *) grep -q "^ *$f\$" CMakeLists.txt || { echo "CMakeLists.txt lacks $f"; ok=1; } ;;
        esac
    done
    for f in $(sed -n 's/^ *\([a-z]*\/[A-Za-z_]*\.cpp\)$/\1/p' config.m4 CMakeLists.txt); do
        [ -f "$f" ] || { echo "listed, but not there: $f"; ok=1; }
    done
    return $ok
}

# How much of the code is there to test the rest: a third of it at most. Saved inputs, what is generated and
# what others wrote count on neither side.
check_share() {
    find . \( -path ./out -o -path ./.git -o -name vendor -o -name node_modules \) -prune -o -type f \
        \( -name '*.cpp' -o -name '*.h' -o -name '*.php' -o -name '*.phpt' -o -name '*.inc' -o -name '*.sh' \
        -o -name '*.js' -o -name '*.mjs' -o -name '*.twig' -o -path ./dev -o -path './bin/*' -o -path './.ci/*' -o -path './debian/*.post*' \) -print |
        grep -v '_arginfo\.h$\|\.min\.js$' | xargs grep -Hc '[^[:space:]]' |
        awk -F: '
            { all += $2; split($1, part, "/") }
            part[2] ~ /^(tests|faults|fuzz|engines)$/ { tests += $2 }
            END {
                printf "tests are %d of %d lines, %.1f %%; a third at most\n", tests, all, 100 * tests / all
                exit tests == 0 || 3 * tests > all
            }'
}

# Files and functions can be read: dev.d/sizes.php has the limits.
check_sizes() {
    # shellcheck disable=SC2046
    "$PHP" dev.d/sizes.php $(sources) $(find bench demo dev.d extras faults php src tests -name '*.php' ! -name '*.stub.php')
}

# The core compiles alone: no generated header, no macro, nothing of PHP.
check_alone() { ! grep -nE '#include [<"](php|zend|config\.h)' $(find $core -type f); }

# generate_arginfo FOLDER: the headers of all stubs, into that folder.
generate_arginfo() {
    rm -rf "$1"
    mkdir -p "$1/PHP-Parser-4.15.1/lib"
    ln -s /usr/share/php/PhpParser "$1/PHP-Parser-4.15.1/lib/PhpParser"
    cp "$("php-config$php" --prefix)/lib/php/$("php-config$php" --phpapi)/build/gen_stub.php" php/*.stub.php "$1/"
    (cd "$1" && for s in *.stub.php; do "php$php" gen_stub.php -f "$s" >/dev/null; done)
}

check_arginfo() {
    generate_arginfo out/arginfo
    for f in php/*_arginfo.h; do
        cmp "$f" "out/arginfo/${f#php/}" || { echo "$f: run ./dev arginfo"; return 1; }
    done
}

# asked_here CHECK: says so if another release asks it.
asked_here() {
    case " $elsewhere " in
        *" $1 "*) echo "not here: $1 depends on the tool's version, and belongs to Debian 12"; return 1 ;;
    esac
}

check_man() {
    "$PHP" extras/manual.php >out/vtmrel.1 && cmp out/vtmrel.1 extras/vtmrel.1 || { echo "run ./dev man"; return 1; }
}

# each CHECK ...: runs them all, then tells whether all passed.
each() {
    deps
    # shellcheck disable=SC2086
    need $test_packages
    mkdir -p out
    bad=0
    for c in "$@"; do
        asked_here "$c" || continue
        if "check_$c"; then echo "ok: $c"; else echo "FAILED: $c"; bad=1; fi
    done
    return $bad
}

check() {
    say "house checks"
    each ascii format floors lists sizes share alone arginfo man
}

# What tools find without running anything: conversions, clang-tidy and its analyzer (.clang-tidy
# says which), cppcheck. Silenced are single lines of the sources, each with its reason.
static() {
    say "static checks"
    each conversions tidy cppcheck
}

check_all() {
    [ "${1:-}" = --static ] || check || broken=1
    static && [ -z "${broken:-}" ]
}

check_conversions() {
    find $core -name '*.cpp' | sort | xargs -P "$jobs" -n 1 \
        g++ -std=c++20 -I. -Wall -Wextra -Wconversion -Wsign-conversion -Werror -fsyntax-only
}

# What was found clean stays so while neither the file nor a header nor the list of checks changes:
# the stamp is as old as the beginning of that run.
check_tidy() {
    mkdir -p out/tidy
    for f in $(find $core -name '*.cpp' | sort); do
        stamp=out/tidy/${f##*/}
        [ -f "$stamp" ] && [ -z "$(find "$f" .clang-tidy $core -newer "$stamp" \
            \( -path "$f" -o -name '*.h' -o -name .clang-tidy \))" ] || echo "$f"
    done | xargs -r -P "$jobs" -n 1 sh -c '
        stamp=out/tidy/${2##*/}
        touch "$stamp.novo"
        "$1" --quiet "$2" -- -std=c++20 -I. 2>/dev/null && mv "$stamp.novo" "$stamp"' tidy "clang-tidy-$llvm"
}

check_cppcheck() {
    cppcheck --std=c++20 --enable=warning,performance,portability --inline-suppr --quiet \
        -j "$jobs" --error-exitcode=1 -I. $core
}

# What these two write must be what their checks compare with.
arginfo() {
    asked_here arginfo || exit 1
    deps
    # shellcheck disable=SC2086
    need $tools
    generate_arginfo out/arginfo
    cp out/arginfo/*_arginfo.h php/
}

format() {
    asked_here format || exit 1
    deps
    # shellcheck disable=SC2086
    need $tools
    "clang-format-$llvm" -i $(sources)
}

man() {
    deps
    "$PHP" extras/manual.php >extras/vtmrel.1
}
