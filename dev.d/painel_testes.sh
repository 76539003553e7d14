# ./dev test painel, and the pictures of the pages: servers and browser as delivered.

# pages_ready: packages, npm modules and data for whatever opens the pages.
pages_ready() {
    build
    # shellcheck disable=SC2086
    need $pages_packages
    cmake_build release gera_logs
    need_npm "$root/out/npm" --ignore-scripts puppeteer-core@24.43.1 axe-core@4.14.1 vnu-jar@26.9.27
}

# panel [--full] [PART ...]: the part "painel" of the tests, or parts of it; with --full a minute of load.
panel() {
    pages_ready
    say "the pages, through nginx, Apache and a browser"
    rm -rf out/painel
    "$PHP" -n -d "extension=$extension" tests/paginas/dados.php out/release/gera_logs "$root/out/painel"
    log=out/painel.log
    node tests/paginas/painel.mjs out/npm/node_modules "$root/out/painel" "$extension" "/usr/sbin/php-fpm$php" \
        "$root/bin/vtmrel" "$@" >"$log" 2>&1 || true
    grep -v '^  ' "$log" | tail -n 60
    p=$(count "$log" '^\([0-9]*\) passed, [0-9]* failed$')
    f=$(count "$log" '^[0-9]* passed, \([0-9]*\) failed$')
    # A run that broke off, or that tried nothing, failed.
    [ "${p:-0}" -gt 0 ] || f=${f:-1}
    add "$p" "${f:-1}"
}

# The pictures of docs/pictures/, of a month of the demo's company, on the evening of its last day.
pictures() {
    pages_ready
    # shellcheck disable=SC2086
    need $show_packages
    dir=$root/out/pictures address=${PAINEL:-127.0.0.1:8026}
    rm -rf "$dir"
    mkdir -p "$dir/dat"
    TZ=UTC out/release/gera_logs "$dir/logs" 2026-03-01 --dias 31 --mensagens 3000 --usuarios 400
    # shellcheck disable=SC2016
    TZ=UTC "$PHP" -n -d "extension=$extension" -r '$m = new vt_mrel();
        $m->setLogDir("$argv[1]/logs") && $m->setDataDir("$argv[1]/dat") && $m->consolidate("$argv[1]/ponto");' "$dir"
    printf '[matriz]\ndados = %s/dat\nlogs = %s/logs\nponto = %s/ponto\nfuso = UTC\n' "$dir" "$dir" "$dir" >"$dir/vt-mrel.ini"
    VT_MREL_CONFIG=$dir/vt-mrel.ini TZ=UTC faketime 2026-03-31T23:59:00 "$PHP" -d "extension=$extension" -S "$address" \
        -t paginas/public paginas/public/index.php >"$dir/log" 2>&1 &
    server=$!
    node dev.d/fotos.mjs out/npm/node_modules "http://$address" docs/pictures || broken=1
    pkill -P "$server" || kill "$server"
    pngquant --force --skip-if-larger --ext .png --quality 70-95 docs/pictures/*.png || true
    [ -z "${broken:-}" ] || die "no pictures: see $dir/log"
}
