// Local time: from a log line's stamp to Unix seconds, and from those to the hour of the day.
#pragma once

#include <cstddef>
#include <cstring>
#include <ctime>

// The conversions of one consolidation or report. Between comeca() and termina() the last one is
// kept, so that the C library is asked only when the date or the hour changes; outside, nothing is
// kept, since the zone may change between two calls.
class Relogio {
  public:
    // Takes over the zone that is now in force and forgets what was kept.
    void comeca();
    void termina() { guarda_ = false; }

    // Unix seconds of the stamp "Www Mmm dd hh:mm:ss yyyy" (local time) at the start of `texto`, or
    // 0 when it is none: too short, an unknown month, a day outside 1..31, a year before 2000, an
    // hour above 23, minutes or seconds above 59. The weekday is not looked at; days that a month
    // lacks run over into the next. -1 when the C library has no value for it.
    time_t do_registro(const char* texto);

    // The hour of the day (0 to 23) at `t`, local time; -1 when it cannot be had.
    int hora_do_dia(time_t t);

    // Whether two times, neither before 1970, lie in the same quarter of an hour of UTC. Zones
    // shift at those: within one the hour of the day is the same.
    static bool mesmo_quarto(time_t a, time_t b) { return a / 900 == b / 900; }

    // As do_registro(), for a text in a buffer of at least `carimbo` bytes. Most lines of a busy
    // log are of the same second as the one before; then nothing is converted at all.
    time_t da_linha(const char* linha) {
        const bool mesma = guarda_ && std::memcmp(linha, ultimo_, carimbo) == 0;
        return mesma ? ultima_hora_ : do_registro(linha);
    }
    static constexpr std::size_t carimbo = 24;  // bytes of a stamp

  private:
    time_t da_hora(const struct tm& tm);
    time_t lembra(const char* t, time_t hora);

    bool guarda_ = false;  // keeping is allowed
    bool cheio_ = false;   // hora_ and inicio_ hold
    char hora_[13] = {};   // "Mmm dd hh" and "yyyy" of the hour kept
    time_t inicio_ = 0;    // its first second

    // Zones shift at quarter hours of UTC: within one the hour of the day is the same.
    time_t quarto_ = 0;
    int hora_do_quarto_ = -1;  // negative: nothing is kept

    char ultimo_[carimbo] = {};  // the last regular stamp, and its time
    time_t ultima_hora_ = 0;
};

// Midnight at the start of the local day that holds `t`.
time_t meia_noite(time_t t);
