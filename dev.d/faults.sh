# ./dev faults: the sweeps over every point where something can fail.

# Temporary files in memory, where there is such a place that everybody may write to (the sweeps give
# up root): none of them needs to last.
in_memory() { [ ! -k /dev/shm ] || export TMPDIR=/dev/shm; }

# sweep PRESET NAME [--tudo]: one kind of fault.
sweep() {
    say "fault sweep, $1: $2"
    cmake_build "$1" falhas
    if (
        in_memory
        shift
        "out/$preset/falhas" "$@"
    ); then add 1; else add 0 1; fi
}

# faults [--full]
faults() {
    [ "${1:---full}" = --full ] || die "faults [--full]"
    if [ "$(uname -m)" != x86_64 ]; then
        echo "skipped: fault sweeps, whose tracer knows the registers of x86_64 alone"
        add 0 0 1
        return
    fi
    deps
    mkdir -p out
    for s in mortes arquivos trava memoria repeticao; do sweep release "$s" ${1:+--tudo}; done
    sweep asan memoria ${1:+--tudo}
    [ $# = 0 ] || soak
}

# Repetition in one PHP process.
soak() {
    build
    cmake_build release gera_logs
    say "soak, PHP"
    rm -rf out/soak
    out/release/gera_logs out/soak/logs 2026-03-10 --dias 3 --mensagens 200 --usuarios 12 >out/soak.log
    if "$PHP" -n -d "extension=$extension" faults/soak.php out/soak; then add 1; else add 0 1; fi
}
