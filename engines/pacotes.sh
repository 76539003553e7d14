# The Debian packages in a bare system of each release, which boots: sourced by ./dev engines. What happens in there is
# in pacotes-dentro.sh.

# packages_of SUITE: builds them on that release. On another one than this machine's, from what is committed.
packages_of() {
    if [ "$1" = "$release" ]; then
        deb
        cp "$deb_out"/*.deb "$trial/new/"
    else
        bootstrap "$here/pacotes-build-$1" "$1" "$(dpkg --print-architecture)" git
        say "building the Debian packages in $1"
        as_root rm -rf "$here/pacotes-build-$1/root/vt_mrel"
        as_root git clone -q --no-hardlinks "$root" "$here/pacotes-build-$1/root/vt_mrel"
        inside "$here/pacotes-build-$1" 'cd /root/vt_mrel && ./dev deb' >"$here/pacotes-build-$1.log" 2>&1 ||
            { tail "$here/pacotes-build-$1.log"; die "the packages do not build in $1"; }
        cp "$here/pacotes-build-$1"/root/vt_mrel/out/deb/*.deb "$trial/new/"
    fi
    rm -f "$trial"/new/*dbgsym*
}

# The same packages under an older version, with a setting that the new ones no longer have as it was.
older() {
    v=$(dpkg-deb -f "$1" Version)
    rm -rf "$trial/part"
    dpkg-deb -R "$1" "$trial/part"
    sed -i "s/$v/0.9/" "$trial/part/DEBIAN/control"
    [ ! -f "$trial/part/etc/vt-mrel.ini" ] || echo '; as 0.9 had it' >>"$trial/part/etc/vt-mrel.ini"
    dpkg-deb --root-owner-group -b "$trial/part" "$trial/old/" >>"$trial/build.log"
}

# Logs of three days up to today, and the totals of the two that are over as the checkout answers them.
known_mail() {
    first=$(TZ=UTC date -d '2 days ago' +%F)
    TZ=UTC out/release/gera_logs "$trial/logs" "$first" --dias 3 --mensagens 2000 >"$trial/build.log"
    set -- --dados "$trial/dat" --logs "$trial/logs" --ponto "$trial/ponto" --fuso UTC
    TZ=UTC bin/vtmrel consolida "$@" >>"$trial/build.log"
    TZ=UTC bin/vtmrel dias "$@" --de "$first" --ate "$(TZ=UTC date -d yesterday +%F)" >"$trial/expected.csv"
    [ "$(wc -l <"$trial/expected.csv")" = 3 ] || die "no mail to try the packages with"
}

# What the packages need is fetched while there is a network. The trial runs without one, over the bare system,
# which stays as it is.
try_packages() {
    base=$here/pacotes-$1
    bootstrap "$base" "$1" "$(dpkg --print-architecture)" systemd-sysv,dbus
    as_root rm -rf "$base/root/debs"
    as_root cp -r "$trial/new" "$base/root/debs"
    inside "$base" 'apt-get update -q && apt-get install -qy --download-only --no-install-recommends \
        /root/debs/*.deb nginx && rm -r /root/debs' >>"$trial/build.log" 2>&1 || { tail "$trial/build.log"; die "what the packages need is not to be had"; }
    say "packages in a booted $1"
    as_root systemd-nspawn -q -D "$base" --volatile=overlay --boot --register=no --keep-unit --private-network \
        --timezone=off --console=pipe --machine="pacotes-$1" --bind="$trial:/t" systemd.run=/t/dentro.sh \
        </dev/null >"$trial/console.log" 2>&1 || echo 'FAILED: the trial ended with an error' >>"$trial/log"
    grep -v '^ok' "$trial/log" || true
    add "$(grep -c '^ok: ' "$trial/log")" "$(grep -c '^FAILED: ' "$trial/log")"
    tail -n 1 "$trial/log" | grep -q '^ok: the end$' || { tail "$trial/console.log"; add 0 1; }
}

engine_pacotes() {
    need systemd-container
    build
    cmake_build release gera_logs
    for suite in bookworm trixie; do
        trial=$here/pacotes-$suite-trial
        as_root rm -rf "$trial"
        mkdir -p "$trial/new" "$trial/old"
        packages_of "$suite"
        for p in "$trial"/new/*.deb; do older "$p"; done
        known_mail
        cp engines/pacotes-dentro.sh "$trial/dentro.sh"
        try_packages "$suite"
    done
}
