# ./dev bench: timings against other tools.

bench() {
    build
    # shellcheck disable=SC2086
    need $bench_packages
    mkdir -p out
    cmake_build release gera_logs mede
    if [ "${1:-}" = --fleet ]; then
        # shellcheck disable=SC2086
        need $fleet_packages
        "$PHP" -d "extension=$extension" bench/frota.php "$extension" out/release out/bench
        return
    fi
    peers=
    if [ "${1:-}" = --peers ]; then
        shift
        peers=out/bench/peers
        need_npm "$peers" "@duckdb/node-api@$duckdb"
    fi
    "$PHP" -n bench/bench.php "$extension" out/release out/bench "$peers" "$@"
    "$PHP" -n bench/comando.php "$extension" out/release out/bench "$@"
    "$PHP" -n bench/paginas.php "$extension" out/release out/bench "$@"
}
