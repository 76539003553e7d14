// The mail-log parser: its life, the local domains and the consolidation around the day loop.
#include "common/LogMailFileParser.h"

#include <cstring>

#include "common/LogMailFileParser_corrida.h"
#include "common/LogMailFileParser_relatos.h"
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
      stat_fname_prefix(""),
      relatos_(std::make_unique<Relatos>(*this)) {
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
    // On the stack: without memory for it, the trace would stay open.
    Corrida esta(*this, true);
    const AoSair fim([this] { corrida_ = nullptr; });
    corrida_ = &esta;  // cppcheck-suppress danglingLifetime ; `fim` takes it back
    avulsa_.reset();
    if (sfile_num_periods == 0) set_sfile_num_periods(24);
    return LogFileParser::consolidate(lastConsolidFile);
}

Corrida& LogMailFileParser::corrida() {
    if (corrida_) return *corrida_;
    if (!avulsa_) avulsa_ = std::make_unique<Corrida>(*this, false);
    return *avulsa_;
}

Corrida::~Corrida() {
    if (!dona_) return;
    p_.fecha(p_.compact_logfile);
    p_.fecha(p_.statistic_logfile);
    p_.Lista_msg.apaga_se([](const Msg*) { return true; });
    p_.Lista_usu.apaga_se([](const Usuario*) { return true; });
    p_.relatos_->esquece();
}
