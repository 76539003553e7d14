# What the day's statistics file holds, counted from the day's log the way an administrator would:
# the header, then for each hour a line for every user who has a counter in it.
#
#     TZ=UTC LC_ALL=C mawk -f estatistica.awk MAIL_DISPATCHER.LOG
#
# One day from start to end, with nothing carried in from the day before; words parted by blanks (no
# tabs), ids of at most 23 characters, no line that ends the day early. Words: $4 time of day, $7
# agent, $8 status, $10 id, $11 and on the arguments. A message is known when its id is in `tries`;
# `remetente` holds the senders of messages of local users.

BEGIN { RS = "\r?\n" }

NR == 1 {
    mes = (index("JanFebMarAprMayJunJulAugSepOctNovDec", $2) + 2) / 3
    meia_noite = mktime(int($5) " " mes " " $3 " 0 0 0")
}

{ hora = substr($4, 1, 2) }

# The user's key in the hour of the line. The header tells the first and the latest hour counted.
function conta(usuario) {
    if (primeira == "") primeira = hora
    ultima = hora
    return usuario SUBSEP hora
}

function enviada(id,   k) {
    k = conta(remetente[id])
    ++enviadas[k]
    b_enviados[k] += size[id]
    return k
}

function recebida(usuario, id,   k) {
    k = conta(usuario)
    ++recebidas[k]
    b_recebidos[k] += size[id]
    sent[id] = 1
    if (!tries[id]) tries[id] = 1
}

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
    if ($8 == "OK") { if (NF >= 12) recebida($12, $10) }
    else if ($8 == "SUBMIT") {
        if ($14 == "com") { de = ""; bytes = $15 }        # bounces lack the sender
        else { de = $14; bytes = $16 }
        if (bytes == "") next
        tries[$10] += 0
        size[$10] = bytes % 4294967296
        if ($12 ~ /^(I|S.......I)/) remetente[$10] = de
    }
    else if (NF < 10) next
    else if ($8 == "END") {
        tries[$10] += 0; fim[$10] = 1
        if ($10 in remetente) enviada($10)
    }
    else if ($8 == "DELIVER") ++tries[$10]
    next
}

$7 == "MAILSMTP" {
    if (NF < 10) next
    if ($8 == "OK") {
        if (NF < 12) next
        if ($10 in pendentes) aceita($10, $12)
        recebida($12, $10)
        next
    }
    if ($8 == "DELIVER") { ++tries[$10]; next }
    if ($8 == "END") {
        tries[$10] += 0; fim[$10] = 1
        if ($10 in error) error[$10] = pendentes[$10] > 0
        if ($10 in remetente) enviada($10)
        next
    }
    if (!($10 in tries)) next                             # errors make no message known
    if ($8 ~ /^ERROR_CONNECT/) { if (NF < 13) next; erro($10, $13, 1) }
    else if ($8 == "ERROR_SENDER") { if (NF < 15) next; erro($10, $15, 1) }
    else if ($8 == "ERROR_DEST") { if (NF < 12) next; erro($10, "dest", 2) }
    else if ($8 == "ERROR_HELO") { if (NF < 12) next; erro($10, $12, 1) }
    else if ($8 == "ERROR_DATA") { error[$10] = 1; ++dados[$10]; ++pendentes[$10] }
    else if ($8 == "ERROR_SIZE") fatal[$10] = 1
    else if ($8 == "ERROR_FINAL") { fatal[$10] = 1; if (!tries[$10]) tries[$10] = 1 }
    else {
        if ($8 == "ERROR_DOMAIN" && NF >= 12 && $11 == "Dominio") erro($10, $12, 1)
        next                                              # counted for nobody
    }
    if ($10 in remetente) ++erros[conta(remetente[$10])]
    next
}

$7 == "SPAMCATCHER" && $8 ~ /^(COPY|TAGGED|QUARANTINE|DISCARD)$/ && NF >= 10 {
    tries[$10] += 0; spam[$10] = 1
    if ($10 in remetente) ++spam_de[enviada($10)]
}

$7 == "ANTIVIRUS" && $8 == "VIRUS" && ($10 in tries) {
    virus[$10] = 1; fim[$10] = 1
    if ($10 in remetente) ++virus_de[enviada($10)]
}

# Counters are 32 bits wide and written as signed numbers.
function int32(n) { n %= 4294967296; return n < 2147483648 ? n : n - 4294967296 }

function nomeia(contador,   k) {
    for (k in contador) usuarios[substr(k, 1, length(k) - 3)]
}

END {
    for (id in tries) {
        acabou = id in fim || id in fatal
        falhou = error[id] || id in fatal
        if (acabou && id in virus) ++n_virus
        if (!tries[id] || !acabou && !falhou) continue
        if (falhou) ++n_error
        if (acabou && id in spam) ++n_spam
        if (falhou && !(id in sent)) continue
        if (id in remetente) { ++n_int; b_int += size[id] } else { ++n_ext; b_ext += size[id] }
    }
    if (primeira == "") { primeira = 0; ultima = 23 }
    printf "%d %d %d %d %d 0 %d %d %d %d\n", meia_noite + primeira * 3600,
        meia_noite + ultima * 3600 + 3599, n_spam, n_virus, n_error, n_int, int32(b_int), n_ext,
        int32(b_ext)

    nomeia(enviadas)
    nomeia(recebidas)
    nomeia(erros)
    for (h = 0; h < 24; ++h) {
        printf "[%d]\n", meia_noite + h * 3600
        for (u in usuarios) {
            k = sprintf("%s%s%02d", u, SUBSEP, h)
            if (k in recebidas || k in enviadas || k in erros)
                printf "%s %d %d %d %d %d %d %d 0\n", u, enviadas[k], int32(b_enviados[k]),
                    recebidas[k], int32(b_recebidos[k]), virus_de[k], spam_de[k], erros[k]
        }
    }
}
