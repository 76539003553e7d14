# The pages, on the demo's data or on another data directory.

# painel [DIR]: serves them until it is stopped. The demo's last day is of March 2026: its clock stands there,
# or the pages would tell of a relay that stopped long ago.
painel() {
    build
    config=$root/out/painel.ini clock=
    if [ -n "${1:-}" ]; then
        [ -d "$1" ] || die "there is no directory $1"
        printf '[painel]\ndados = %s\n' "$(cd "$1" && pwd)" >"$config"
    else
        # shellcheck disable=SC2086
        need $show_packages
        [ -d out/demo/dat ] || demo
        printf '[demo]\ndados = %s\nlogs = %s\nponto = %s\nsaude = %s\nfuso = UTC\n' "$root/out/demo/dat" "$root/out/demo/logs" \
            "$root/out/demo/ultima_consolidacao" "$root/out/painel.json" >"$config"
        clock='env TZ=UTC faketime 2026-03-12T23:59:00'
        $clock bin/vtmrel verifica --config "$config" >/dev/null || true  # what it found is on the page of health
    fi
    address=${PAINEL:-127.0.0.1:8025}
    say "http://$address/  (end with Ctrl-C)"
    export VT_MREL_CONFIG="$config"
    # shellcheck disable=SC2086
    exec $clock "$PHP" -d "extension=$extension" -S "$address" -t paginas/public paginas/public/index.php
}
