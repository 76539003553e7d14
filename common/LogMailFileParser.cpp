// The mail-log parser: its life, the local domains and the consolidation around the day loop.
#include "common/LogMailFileParser.h"

#include <cstring>

#include "common/auxiliar.h"
#include "misc/escopo.h"

LogMailFileParser::LogMailFileParser()
    : compact_logfile(nullptr),
      statistic_logfile(nullptr),
      period_limit(nullptr),
      sfile_num_periods(0),
      first_period(0),
      last_period(0),
      first_period_ok(false),
      compact_fname_prefix(""),
      stat_fname_prefix("") {
    consolid_period = 86400;
    set_sfile_num_periods(24);
    std::strcpy(def_dir, "LOGS");
    std::strcpy(def_fname, "MAIL_DISPATCHER.LOG");
    std::memcpy(compact_fname_prefix, diario::compacto, sizeof diario::compacto);
    std::memcpy(stat_fname_prefix, diario::estatistica, sizeof diario::estatistica);
    std::strcpy(data_dir, "DAT");
}

LogMailFileParser::~LogMailFileParser() {
    delete[] period_limit;
    apaga_todos(domains);
}

bool LogMailFileParser::add_domain(char* list) {
    if (!list) return recusa("LogMailFileParser::add_domain: Param. incorreto.\r\n");
    const std::unique_ptr<char*[]> nomes(explode(list, ';', nullptr));
    for (char** nome = nomes.get(); nome && *nome; ++nome) {
        Domain* d = new Domain{};
        std::memcpy(d->name, *nome, strnlen(*nome, sizeof d->name));
        domains.putFirst(d);
    }
    return true;
}

bool LogMailFileParser::consolidate(const char* lastConsolidFile) {
    const AoSair fim([this] { esvazia(); });
    if (sfile_num_periods == 0) set_sfile_num_periods(24);
    return LogFileParser::consolidate(lastConsolidFile);
}

// Ends a run, also one that an exception left in mid-day.
void LogMailFileParser::esvazia() {
    fecha(compact_logfile);
    fecha(statistic_logfile);
    lote_.reset();
    remetentes_.reset();
    Lista_msg.apaga_se([](const Msg*) { return true; });
    Lista_usu.apaga_se([](const Usuario*) { return true; });
    trabalhos_.esquece();
}
