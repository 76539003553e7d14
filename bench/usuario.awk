# The messages that one user sent or received, from a compact file: id, 1 sent or 0 received, time,
# size, sender, local sender, error, spam, virus; the oldest row first.
#
#     LC_ALL=C mawk -v usuario=ADDRESS -f usuario.awk compact_mail_DD.txt

function dele(endereco) { return tolower(substr(endereco, 1, tamanho)) == usuario }

function linha(id) {
    if (!(id in posicao)) { posicao[id] = ++linhas; ids[linhas] = id }
    hora[id] = $1
}

BEGIN { usuario = tolower(usuario); tamanho = length(usuario) }

$3 == 1 {
    if (NF > 6) { remetente[$4] = $6; bytes[$4] = $7 } else bytes[$4] = $6   # bounces lack the sender
    interno[$4] = $5 ~ /^(I|S.......I)/
    if (NF > 6 && dele($6)) { linha($4); enviada[$4] = 1 }
}
$3 == 2 && dele($5) { linha($4); enviada[$4] = 0; erro[$4] = acabou[$4]; virus_visto[$4] = virus[$4] }
$3 == 4 { acabou[$4] = !fatal[$4] }
$3 == 8 { fatal[$4] = 1; erro[$4] = 1 }
$3 == 13 || $3 == 17 || NF > 4 && ($3 == 5 || $3 == 9 || $3 == 10 || $3 == 11) { erro[$4] = 1 }
$3 == 15 { virus[$4] = virus_visto[$4] = 1 }

END {
    for (i = 1; i <= linhas; ++i) {
        id = ids[i]
        printf "%s %d %d %d %s %d %d 0 %d\n", id, enviada[id], "0x" hora[id], bytes[id],
            remetente[id], interno[id], erro[id], virus_visto[id]
    }
}
