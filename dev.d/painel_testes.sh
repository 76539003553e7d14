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
