# ./dev bench: timings against other tools.

bench() {
    build
    need ripgrep
    mkdir -p out
    cmake_build release gera_logs mede
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
