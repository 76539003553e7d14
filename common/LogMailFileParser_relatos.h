// What serves the reports: how they read day files, and what they remember.
#pragma once

#include <string>

#include "common/LogMailFileParser.h"
#include "common/Trabalho.h"
#include "common/compacta.h"
#include "common/diario.h"

// Lives as long as its parser, whose domains, directories and clock it uses: a report finds what an
// earlier one met.
class Relatos {
  public:
    explicit Relatos(LogMailFileParser& p) : p_(p) {}
    Relatos(const Relatos&) = delete;
    Relatos& operator=(const Relatos&) = delete;

    // Read the statistics files (_leitura.cpp), or replay the compact files (_replay.cpp), of some
    // days for one report.
    bool le_estatisticas(diario::Dias dias, DList<MsgsData>* m_day,
                         DList<MsgsDayUser>* msgs_day_user, DList<MsgsData>* m_hour,
                         const char* user);
    void replay(diario::Dias dias, long start, long end, ReportType type, params* p);

    // The messages of users (_usuario.cpp), as LogMailFileParser::get_user_msgs; then what the
    // parser's public handlers do, over the fields of a line whose id is measured and hashed.
    void mensagens(const char* destinatarios, const char* remetentes, const char* msg_id,
                   int min_kb, int max_kb, long start, long end, DList<UserMsgs>* msgs);
    int user_submit(const params& q, const Campos& c);
    int user_ok(const params& q, const Campos& c);
    int user_end(const params& q, const Campos& c);
    int user_virus(const params& q, const Campos& c);
    int user_erro(const params& q, const Campos& c, ErrorType tipo);

    // The hours of the day (_hora.cpp), likewise.
    int hora_submit(MsgsData* hora, const Campos& c);
    int hora_end(MsgsData* hora, const Campos& c);
    int hora_erro(MsgsData* hora, const Campos& c);
    int hora_virus(MsgsData* hora, const Campos& c);
    int hora_spam(MsgsData* hora, const Campos& c);

    LogMailFileParser& parser() { return p_; }

    // Forgets what reports remembered.
    void esquece() noexcept { trabalhos_.esquece(); }

  private:
    struct Replay;
    struct LeituraEstatistica;
    struct IndiceDeLinhas;

    bool recusa(const char* texto) const { return p_.recusa(texto); }
    bool corta_dominio_local(std::string& endereco);
    UserMsgs* linha_de(DList<UserMsgs>* msgs, const Chave& id);
    UserMsgs* nova_linha(DList<UserMsgs>* msgs, const Chave& id);
    bool remetido(DList<Usuario>* remetentes, const char* endereco);

    LogMailFileParser& p_;
    Trabalhos trabalhos_;  // never seen by a consolidation, whose end makes it forget them
    IndiceDeLinhas* indice_ = nullptr;  // of the rows being filled, during mensagens()
};
