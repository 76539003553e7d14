// Local time: from a log line's stamp to Unix seconds.
#include "common/relogio.h"

#include "misc/numero.h"

namespace {

// 0 (January) to 11 from the letters at columns 4 to 6, by the letters that tell months apart.
int mes(const char* t) {
    switch (t[4]) {
        case 'A':
            return t[5] == 'p' ? 3 : 7;
        case 'D':
            return 11;
        case 'F':
            return 1;
        case 'J':
            return t[5] == 'a' ? 0 : t[6] == 'n' ? 5 : 6;
        case 'M':
            return t[6] == 'r' ? 2 : 4;
        case 'N':
            return 10;
        case 'O':
            return 9;
        case 'S':
            return 8;
        default:
            return -1;
    }
}

bool digito(char c) {
    return c >= '0' && c <= '9';
}

// Two digits with no third behind them: what a well-written stamp holds at `t`.
bool dupla(const char* t) {
    return digito(t[0]) && digito(t[1]) && !digito(t[2]);
}
time_t valor(const char* t) {
    return (t[0] - '0') * 10 + (t[1] - '0');
}

bool limites(const struct tm& tm) {
    return tm.tm_mday >= 1 && tm.tm_mday <= 31 && tm.tm_year > 99 && tm.tm_hour <= 23 &&
           tm.tm_min <= 59 && tm.tm_sec <= 59;
}

}  // namespace

void Relogio::comeca() {
    tzset();
    guarda_ = true;
    cheio_ = false;
    hora_do_quarto_ = -1;
    ultimo_[0] = '\0';
    ultima_hora_ = 0;
}

time_t Relogio::do_registro(const char* t) {
    if (strnlen(t, carimbo) < carimbo) return 0;
    const bool regular = dupla(t + 11) && dupla(t + 14) && dupla(t + 17) && digito(t[9]) &&
                         (digito(t[8]) || t[8] == ' ') && !digito(t[10]);
    if (cheio_ && regular && t[14] < '6' && t[17] < '6' && std::memcmp(hora_, t + 4, 9) == 0 &&
        std::memcmp(hora_ + 9, t + 20, 4) == 0)
        return lembra(t, inicio_ + valor(t + 14) * 60 + valor(t + 17));

    struct tm tm = {};
    tm.tm_mon = mes(t);
    if (tm.tm_mon < 0) return 0;
    const char ano[] = {t[20], t[21], t[22], t[23], '\0'};
    tm.tm_mday = decimal32(t + 8);
    tm.tm_hour = decimal32(t + 11);
    tm.tm_min = decimal32(t + 14);
    tm.tm_sec = decimal32(t + 17);
    tm.tm_year = decimal32(ano) - 1900;
    tm.tm_isdst = -1;
    if (!limites(tm)) return 0;
    if (!guarda_ || !regular) return mktime(&tm);
    std::memcpy(hora_, t + 4, 9);
    std::memcpy(hora_ + 9, t + 20, 4);
    return lembra(t, da_hora(tm));
}

// Keeps the answer for a stamp whose value depends on its 24 bytes alone.
time_t Relogio::lembra(const char* t, time_t hora) {
    std::memcpy(ultimo_, t, carimbo);
    return ultima_hora_ = hora;
}

// Converts `tm` and keeps its hour if the clock ran straight through it.
time_t Relogio::da_hora(const struct tm& tm) {
    struct tm primeiro = tm, ultimo = tm, pedido = tm;
    primeiro.tm_min = primeiro.tm_sec = 0;
    ultimo.tm_min = ultimo.tm_sec = 59;
    inicio_ = mktime(&primeiro);
    cheio_ = inicio_ != -1 && mktime(&ultimo) - inicio_ == 3599;
    return cheio_ ? inicio_ + tm.tm_min * time_t{60} + tm.tm_sec : mktime(&pedido);
}

int Relogio::hora_do_dia(time_t t) {
    const time_t quarto = t / 900 - (t % 900 < 0);
    if (guarda_ && hora_do_quarto_ >= 0 && quarto == quarto_) return hora_do_quarto_;
    struct tm tm;
    if (!localtime_r(&t, &tm)) return -1;
    quarto_ = quarto;
    hora_do_quarto_ = tm.tm_hour;
    return tm.tm_hour;
}

time_t meia_noite(time_t t) {
    struct tm tm = {};
    localtime_r(&t, &tm);
    tm.tm_hour = tm.tm_min = tm.tm_sec = 0;
    tm.tm_isdst = -1;
    return mktime(&tm);
}
