#!/bin/sh
# Run as root in a bare Debian that has just booted, by engines/pacotes.sh: installs an older version of the packages,
# uses it, upgrades, removes and purges. Writes a line for each thing tried into /t/log.

cd /t || exit
exec >log 2>&1
export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8
apt='apt-get -qq -o Dpkg::Use-Pty=0 --no-install-recommends -y'

# try WHAT COMMAND: what the command says is shown if it fails.
try() {
    what=$1
    shift
    if "$@" >said 2>&1; then echo "ok: $what"; else tail -n 30 said; echo "FAILED: $what"; fi
}
not() { ! "$@"; }
same() { diff "$1" "$2"; }
# files: what is there of files that packages bring or make, but for what apt, dpkg and systemd note for themselves.
files() { find /etc /usr /var /run /tmp -xdev ! -path '/var/lib/dpkg/*' ! -path '/var/cache/*' ! -path '/var/lib/apt/*' \
    ! -path '/var/log/*' ! -path '/run/*' ! -path '/tmp/*' | sort; }
ours=$(for p in new/*.deb; do dpkg-deb -f "$p" Package; done)
timers=$(dpkg-deb -c new/vt-mrel-tools_*.deb | sed -n 's|.*/systemd/system/\(.*\)\.timer$|\1|p')

# What the packages need comes first, so that afterwards only what is theirs can be left.
need=$($apt -s install ./new/*.deb nginx | sed -n 's/^Inst \([^ ]*\).*/\1/p' | grep -v mrel)
try 'what they need' $apt install $need
files >before

try 'installs' $apt install ./old/*.deb
try 'the command line has the module' sh -c 'php -m | grep -q "Vorna PHP admin"'
try 'the sections of the older configuration' grep -q 'as 0.9' /etc/vt-mrel.ini
mkdir /var/log/relay
cp logs/* /var/log/relay/

# A timer is told to strike at once, since nobody waits for the night; its service must then have done its work.
strikes() {
    mkdir -p "/run/systemd/system/$1.timer.d"
    printf '[Timer]\nOnActiveSec=1s\nAccuracySec=100ms\nRandomizedDelaySec=0\n' >"/run/systemd/system/$1.timer.d/now.conf"
    systemctl daemon-reload
    systemctl restart "$1.timer"
    for _ in 1 2 3 4 5 6; do
        sleep 5
        [ "$(systemctl show -P ExecMainStartTimestampMonotonic "$1.service")" = 0 ] ||
            [ "$(systemctl show -P ActiveState "$1.service")" = activating ] || break
    done
    rm -r "/run/systemd/system/$1.timer.d"
    systemctl daemon-reload
    systemctl restart "$1.timer"
    systemctl status --no-pager --full "$1.service"
    [ "$(systemctl show -P Result "$1.service")" = success ] &&
        [ "$(systemctl show -P ExecMainStartTimestampMonotonic "$1.service")" != 0 ]
}
[ -n "$timers" ] || echo 'FAILED: there are no timers'
for t in $timers; do
    try "timer $t is on" sh -c "systemctl is-enabled $t.timer && systemctl is-active $t.timer"
    try "timer $t strikes" strikes "$t"
done
first=$(sed -n '2s/,.*//p' expected.csv) last=$(sed -n '3s/,.*//p' expected.csv)
answers() { vtmrel dias --de "$first" --ate "$last" >answer.csv && diff expected.csv answer.csv; }
try 'the service consolidated both days' answers
try 'the day files belong to the service, and are for its group' \
    sh -c '[ "$(find /var/lib/relay/reports -type f ! -user relreports -o -type f -perm /007 | wc -l)" = 0 ]'
try 'completion' sh -c '[ "$(vtmrel _complete --no-interaction -sbash -c1 -S1.0 -ivtmrel -idi | head -n 1)" = dias ]'

# The pages, as nginx has them.
ln -s ../sites-available/vt-mrel.conf /etc/nginx/sites-enabled/
systemctl restart nginx
page() { php -r 'echo file_get_contents("http://127.0.0.1:8025$argv[1]");' "$1"; }
pages() { page "/dias?formato=csv&de=$first&ate=$last" >answer.csv && diff expected.csv answer.csv && page / | grep '</html>'; }
try 'pages through nginx' pages
try 'no other page may read the day files' sh -c '! runuser -u www-data -- cat /var/lib/relay/reports/*/mail_stat*'

echo '; a hand was here' >>/etc/vt-mrel.ini
try 'upgrades' $apt -o Dpkg::Options::=--force-confold install ./new/*.deb
try 'the version is the new one' sh -c 'dpkg-query -W vt-mrel-tools | grep -qv 0.9'
try 'a changed configuration stays' grep -q 'a hand was here' /etc/vt-mrel.ini
try 'answers as before' answers
try 'pages as before' pages
for t in $timers; do try "timer $t is on after the upgrade" systemctl is-active "$t.timer"; done

try 'removes' $apt remove $ours
try 'no module is left' sh -c '! php -m | grep -q "Vorna PHP admin" && php -v | grep -qv -i warning'
try 'no unit is left' sh -c 'systemctl list-units --all --no-legend "vtmrel*" | grep -v not-found | diff /dev/null -'
try 'configuration and data are left' sh -c '[ -s /etc/vt-mrel.ini ] && [ -n "$(find /var/lib/relay -name "mail_stat*")" ]'
try 'php-fpm goes on without the pool' sh -c 'systemctl is-active "php*-fpm.service" && ! ls /run/php/vt-mrel.sock'
try 'purges' $apt purge $ours
files >after
left() { comm -13 before after | grep -v '^/var/lib/relay' | diff /dev/null -; }
try 'only data is left' left
try 'nginx goes on without the site' sh -c 'nginx -t && systemctl restart nginx'
try 'the data is left whole' sh -c '[ "$(find /var/lib/relay -name "mail_stat*" -size +0 | wc -l)" -ge 2 ]'
echo 'ok: the end'
