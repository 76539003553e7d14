# ./dev test frota: many relays in one database, over a month of generated mail.

fleet() {
    build
    # shellcheck disable=SC2086
    need $fleet_packages
    cmake_build release gera_logs
    say "fleet"
    mail=$root/out/frota peers=$root/out/frota-npm
    need_npm "$peers" "@duckdb/node-api@$duckdb"
    rm -rf "$mail"
    mkdir -p "$mail/dat"
    TZ=Atlantic/Azores out/release/gera_logs "$mail/logs" 2026-03-05 --dias 31 --mensagens 150 --usuarios 40 \
        --virus 0.02 --crlf 0.01 --estranhas 0.01 >out/frota.log
    consolidates "$mail"
    VT_EXTENSAO=$extension VT_FROTA=$mail VT_NPM=$peers run_phpunit frota tests/frota
}
