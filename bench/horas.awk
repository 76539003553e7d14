# Messages by hour of the day (UTC), from a compact file: local messages, their bytes, outside
# messages, their bytes, spam, virus, errors.
#
#     LC_ALL=C mawk -f horas.awk compact_mail_DD.txt

$1 != instante { instante = $1; hora = int(("0x" $1) % 86400 / 3600) }

$3 == 1 { bytes[$4] = NF > 6 ? $7 : $6; interno[$4] = $5 ~ /^(I|S.......I)/; delete marca[$4]; next }
$3 == 4 {
    if (!($4 in bytes)) next
    if (marca[$4] == "erro") { ++erro[hora]; next }
    if (marca[$4] == "spam") ++spam[hora]
    else if (marca[$4] == "virus") ++virus[hora]
    if (interno[$4]) { ++n_int[hora]; b_int[hora] += bytes[$4] }
    else { ++n_ext[hora]; b_ext[hora] += bytes[$4] }
    next
}
$3 == 18 { ++spam[hora]; if (marca[$4] != "erro") marca[$4] = "spam"; next }
$3 == 15 { ++virus[hora]; if (!marca[$4]) marca[$4] = "virus"; next }
$3 ~ /^([5689]|10|11|12|14)$/ { marca[$4] = "erro" }

END {
    for (h = 0; h < 24; ++h)
        printf "%d %d %d %d %d %d %d\n", n_int[h], b_int[h], n_ext[h], b_ext[h], spam[h], virus[h],
            erro[h]
}
