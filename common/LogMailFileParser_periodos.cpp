// The periods of a day and the opening of its files.
#include <sys/stat.h>

#include <algorithm>

#include "common/LogMailFileParser_corrida.h"
#include "misc/escrita.h"
#include "misc/ncutils.h"

void LogMailFileParser::set_sfile_num_periods(unsigned n) {
    if (n == 0) n = 24;
    time_t* limites = new time_t[n]();
    delete[] period_limit;
    period_limit = limites;
    sfile_num_periods = n;
    last_period = n;
}

bool LogMailFileParser::setLastPeriod(unsigned p) {
    if (p >= sfile_num_periods) return false;
    last_period = p;
    return true;
}

void LogMailFileParser::calculatePeriodLimits() {
    struct tm tm = {};
    localtime_r(&lastConsolid, &tm);
    first_period = 0;
    last_period = sfile_num_periods - 1;
    // By subtraction: on a day of 23 or 25 hours the periods keep their length.
    time_t limite = lastConsolid - (tm.tm_hour * 3600 + tm.tm_min * 60 + tm.tm_sec);
    for (unsigned i = 0; i < sfile_num_periods; ++i) period_limit[i] = limite += passo();
}

unsigned LogMailFileParser::getPeriodByTime(time_t t) {
    const unsigned ultimo = sfile_num_periods - 1;
    // Mostly the period of the event before.
    unsigned p = last_period;
    if (p >= ultimo || t >= period_limit[p] || (p > 0 && t < period_limit[p - 1]))
        p = static_cast<unsigned>(std::upper_bound(period_limit, period_limit + ultimo, t) -
                                  period_limit);
    if (!first_period_ok) first_period = p;
    first_period_ok = true;
    last_period = p;
    return p;
}

bool LogMailFileParser::createFile(std::FILE** fp, const char* prefix) {
    struct tm tm = {};
    localtime_r(&lastConsolid, &tm);
    char path[diario::maior_caminho];
    diario::nome_do_dia(path, data_dir, tm.tm_mon + 1, tm.tm_year % 100, prefix, tm.tm_mday);
    *fp = abre_escrita(path);
    if (*fp) return true;
    char mes[diario::maior_caminho];
    diario::nome_do_mes(mes, data_dir, tm.tm_mon + 1, tm.tm_year % 100);
    if (mkdir(mes, 0755) == 0 && !sincroniza_diretorio_de(mes)) parada_ = true;
    *fp = abre_escrita(path);
    if (*fp) return true;
    traco("createFile: Erro ao criar arquivo %s\n.", path);
    return false;
}

// Syncs the month's directory, so that the names of the day's files last. A failure counts as one
// of writing.
bool LogMailFileParser::sincroniza_mes() {
    struct tm tm = {};
    localtime_r(&lastConsolid, &tm);
    char path[diario::maior_caminho];
    diario::nome_do_dia(path, data_dir, tm.tm_mon + 1, tm.tm_year % 100, "", tm.tm_mday);
    if (sincroniza_diretorio_de(path)) return true;
    parada_ = true;
    return false;
}

bool LogMailFileParser::createFiles() {
    fecha(compact_logfile);
    calculatePeriodLimits();
    bool& sem_compacto = corrida().sem_compacto;
    sem_compacto = !createFile(&compact_logfile, compact_fname_prefix);
    if (sem_compacto) return false;
    MemoriaDeStream::empresta(compact_logfile);
    return true;
}

// Closes a day file, if it is open. What did not reach the disk must be written again by the next
// run: the point does not move then.
bool LogMailFileParser::fecha(std::FILE*& arquivo) {
    if (!arquivo) return true;
    const bool gravado = fecha_gravado(arquivo);
    MemoriaDeStream::fechada(arquivo);
    arquivo = nullptr;
    if (!gravado) parada_ = true;
    return gravado;
}
