# The pages, on the demo's data or on another data directory.

# painel [DIR]: serves them until it is stopped.
painel() {
    build
    config=$root/out/painel.ini
    if [ -n "${1:-}" ]; then
        [ -d "$1" ] || die "there is no directory $1"
        printf '[painel]\ndados = %s\n' "$(cd "$1" && pwd)" >"$config"
    else
        [ -d out/demo/dat ] || demo
        printf '[demo]\ndados = %s\nlogs = %s\nponto = %s\nfuso = UTC\n' "$root/out/demo/dat" "$root/out/demo/logs" \
            "$root/out/demo/ultima_consolidacao" >"$config"
    fi
    address=${PAINEL:-127.0.0.1:8025}
    say "http://$address/  (end with Ctrl-C)"
    VT_MREL_CONFIG=$config exec "$PHP" -d "extension=$extension" -S "$address" -t paginas/public paginas/public/index.php
}
