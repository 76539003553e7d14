# ./dev deb: the Debian packages, whose contents are said in debian/. And their test.

deb_out=$root/out/deb

# The one version there is, asked of the command. Each release of Debian adds its number, so that the packages
# of the next release are an upgrade.
deb_version() {
    "$PHP" bin/vtmrel.php --version | sed 's/^vtmrel //'
    sed -n 's/^VERSION_ID="\(.*\)"/+deb\1/p' /etc/os-release
}

# deb [VERSION]: the tree as it stands, built in a copy of it. Another version is for trying an upgrade.
deb() {
    deps
    # shellcheck disable=SC2086
    need $deb_packages
    say "building the Debian packages"
    rm -rf "$deb_out"
    mkdir -p "$deb_out/vt-mrel"
    tar -c --exclude=./out --exclude=./.git . | tar -x -C "$deb_out/vt-mrel"
    deb_changelog "${1:-$(deb_version | tr -d '\n')}" >"$deb_out/vt-mrel/debian/changelog"
    (
        cd "$deb_out/vt-mrel"
        debian/rules debian/control
        dpkg-buildpackage -b -us -uc
    ) >"$deb_out/build.log" 2>&1 || { tail -n 40 "$deb_out/build.log"; die "the packages do not build"; }
    rm -rf "$deb_out/vt-mrel"
    ls "$deb_out"/*.deb
}

deb_changelog() {
    cat <<TXT
vt-mrel ($1) $release; urgency=medium

  * Built from the tree.

 -- $(sed -n 's/^Maintainer: //p' debian/control.in)  $(date -R -d "@${SOURCE_DATE_EPOCH:-$(date +%s)}")
TXT
}

# --- test -------------------------------------------------------------------------------------

deb_test() {
    deb
    build
    cmake_build release gera_logs
    say "packages"
    rm -rf "$deb_out/tree"
    for p in "$deb_out"/*.deb; do dpkg-deb -x "$p" "$deb_out/tree"; done
    for t in lintian places answers; do
        if "deb_$t" >"$deb_out/$t.log" 2>&1; then echo "ok: $t"; add 1; else cat "$deb_out/$t.log"; add 0 1; fi
    done
}

# A warning is mended, or overridden with its reason in debian/*.lintian-overrides.
deb_lintian() { lintian --allow-root --fail-on error,warning "$deb_out"/*.changes; }

# What other programs look for, where they look; the whole library; nothing that others may write to, no link into
# nothing. Paths that this line does not name are found by the tests below, or by nobody.
deb_places() {
    missing=$(
        cd "$deb_out/tree" || exit
        for f in ".$("$PHP_CONFIG" --extension-dir)/vt_mrel.so" "etc/php/$php/mods-available/vt_mrel.ini" etc/vt-mrel.ini \
            usr/share/man/man1/vtmrel.1.gz usr/share/bash-completion/completions/vtmrel \
            usr/lib/sysusers.d/vt-mrel-tools.conf usr/lib/tmpfiles.d/vt-mrel-tools.conf \
            usr/lib/sysusers.d/vt-mrel-painel.conf etc/vt-mrel/php-fpm.conf etc/nginx/sites-available/vt-mrel.conf \
            etc/apache2/sites-available/vt-mrel.conf; do
            [ -s "$f" ] || echo "$f is not there"
        done
        for u in "$root"/extras/systemd/*; do
            find lib usr/lib -path "*/systemd/system/${u##*/}" 2>/dev/null | grep -q . || echo "${u##*/} is not there"
        done
        find . ! -type l -perm /022 -printf 'others may write to %P\n'
        find . -xtype l -printf '%P leads nowhere\n'
        for d in bin src paginas; do diff -rq "$root/$d" "usr/share/vt-mrel/$d"; done
    )
    [ -z "$missing" ] || { echo "$missing"; return 1; }
}

# The unpacked module and command answer what those of the checkout answer, from days that they consolidated.
deb_answers() {
    mkdir "$deb_out/conf" "$deb_out/mail"
    so=$(find "$deb_out/tree/usr/lib/php" -name vt_mrel.so)
    sed "s|=vt_mrel.so|=$so|" "$deb_out/tree/etc/php/$php/mods-available/vt_mrel.ini" >"$deb_out/conf/vt_mrel.ini"
    out/release/gera_logs "$deb_out/mail/logs" 2026-03-10 --dias 3 --mensagens 500
    printf '[prova]\ndados = %s/dat\nlogs = %s/logs\nponto = %s/ponto\n' "$deb_out/mail" "$deb_out/mail" "$deb_out/mail" \
        >"$deb_out/mail/relay.ini"
    installed consolida  # which says that today has no mail
    installed dias --de 2026-03-10 --ate 2026-03-12 >"$deb_out/installed.csv" &&
        VT_MREL_CONFIG=$deb_out/mail/relay.ini bin/vtmrel dias --de 2026-03-10 --ate 2026-03-12 |
        diff - "$deb_out/installed.csv" && [ "$(wc -l <"$deb_out/installed.csv")" = 4 ]
}

installed() {
    VT_MREL_CONFIG=$deb_out/mail/relay.ini PHP_INI_SCAN_DIR="/etc/php/$php/cli/conf.d:$deb_out/conf" \
        "$deb_out/tree/usr/bin/vtmrel" "$@"
}
