# The totals of one day, counted from its log the way an administrator would: the eight figures that
# follow the two times in the header of the day's statistics file.
#
#     LC_ALL=C mawk -f totais.awk MAIL_DISPATCHER.LOG
#
# One day from start to end, with nothing carried in from the day before; words parted by blanks (no
# tabs), ids of at most 23 characters, no line that ends the day early. Words: $7 agent, $8 status,
# $10 id, $11 and on the arguments.

BEGIN { RS = "\r?\n" }

function existe(id) { if (!(id in tries)) tries[id] = 0 }
function tentada(id) { if (!tries[id]) tries[id] = 1 }

# A pending error: kind 1 goes when the domain `texto` takes the message, kind 2 stays.
function erro(id, texto, tipo) {
    error[id] = 1
    if ((id, texto) in pendente) return
    pendente[id, texto] = tipo
    ++pendentes[id]
}

function tira_dados(id) { if (id in dados && dados[id] > 0) { --dados[id]; --pendentes[id] } }

# A recipient has the message: the pending errors of his domain are over.
function aceita(id, destino,   dominio, arroba) {
    arroba = index(destino, "@")
    if (arroba) {
        dominio = substr(destino, arroba + 1)
        if ((id, dominio) in pendente && pendente[id, dominio] == 1) {
            delete pendente[id, dominio]
            --pendentes[id]
        }
        tira_dados(id)
    }
    tira_dados(id)
}

$7 == "MAILQ" {
    if ($8 == "OK") {
        if (NF < 12) next
        existe($10); tentada($10); sent[$10] = 1
    } else if ($8 == "SUBMIT") {
        if ($14 == "com") bytes = $15; else bytes = $16   # bounces lack the sender
        if (bytes == "") next
        existe($10)
        size[$10] = bytes % 4294967296
        if ($12 ~ /^(I|S.......I)/) interno[$10] = 1
    } else if (NF < 10) next
    else if ($8 == "END") { existe($10); fim[$10] = 1 }
    else if ($8 == "DELIVER") ++tries[$10]
    next
}

$7 == "MAILSMTP" {
    if (NF < 10) next
    if ($8 == "OK") {
        if (NF < 12) next
        existe($10)
        if ($10 in pendentes) aceita($10, $12)
        tentada($10); sent[$10] = 1
    } else if ($8 == "DELIVER") ++tries[$10]
    else if ($8 == "END") {
        existe($10); fim[$10] = 1
        if ($10 in error) error[$10] = pendentes[$10] > 0
    }
    else if (!($10 in tries)) next                         # errors make no message known
    else if ($8 ~ /^ERROR_CONNECT/) { if (NF >= 13) erro($10, $13, 1) }
    else if ($8 == "ERROR_SENDER") { if (NF >= 15) erro($10, $15, 1) }
    else if ($8 == "ERROR_DEST") { if (NF >= 12) erro($10, "dest", 2) }
    else if ($8 == "ERROR_HELO") { if (NF >= 12) erro($10, $12, 1) }
    else if ($8 == "ERROR_DOMAIN") { if (NF >= 12 && $11 == "Dominio") erro($10, $12, 1) }
    else if ($8 == "ERROR_DATA") { error[$10] = 1; ++dados[$10]; ++pendentes[$10] }
    else if ($8 == "ERROR_SIZE") fatal[$10] = 1
    else if ($8 == "ERROR_FINAL") { fatal[$10] = 1; tentada($10) }
    next
}

$7 == "SPAMCATCHER" && $8 ~ /^(COPY|TAGGED|QUARANTINE|DISCARD)$/ && NF >= 10 {
    existe($10); spam[$10] = 1
}

$7 == "ANTIVIRUS" && $8 == "VIRUS" && ($10 in tries) { virus[$10] = 1; fim[$10] = 1 }

# Counters are 32 bits wide and written as signed numbers.
function int32(n) { n %= 4294967296; return n < 2147483648 ? n : n - 4294967296 }

END {
    for (id in tries) {
        acabou = id in fim || id in fatal
        falhou = error[id] || id in fatal
        if (acabou && id in virus) ++n_virus
        if (!tries[id] || !acabou && !falhou) continue
        if (falhou) ++n_error
        if (acabou && id in spam) ++n_spam
        if (falhou && !(id in sent)) continue
        if (id in interno) { ++n_int; b_int += size[id] } else { ++n_ext; b_ext += size[id] }
    }
    printf "%d %d %d 0 %d %.0f %d %.0f\n", n_spam, n_virus, n_error, n_int, int32(b_int), n_ext,
        int32(b_ext)
}
