// Messages by hour of the day: from compact lines for all users, from statistics files for one.
#include "common/LogMailFileParser_relatos.h"
#include "misc/numero.h"

int LogMailFileParser::get_msgs_per_hour(long start, long end, DList<MsgsData>* m_hour) {
    if (start > end || !m_hour)
        return recusa("LogMailFileParser::get_msgs_per_hour : Params inv\xE1lidos.\r\n");
    params p{};
    p.m_hour = m_hour;
    relatos_->replay({data_dir, diario::compacto, start, end}, start, end, MSGS_PER_HOUR, &p);
    return 1;
}

int LogMailFileParser::get_msgs_per_hour_per_user(long start, long end, const char* user,
                                                  DList<MsgsData>* m_hour) {
    if (start > end || !user) {
        // The text of the report by day: whoever reads the trace looks for it here too.
        return recusa("LogMailFileParser::get_msgs_per_day : Data inicial > data final\r\n");
    }
    relatos_->le_estatisticas({data_dir, diario::estatistica, start, end}, nullptr, nullptr, m_hour,
                              user);
    return 1;
}

int Relatos::hora_submit(MsgsData* hora, const Campos& c) {
    if (!hora || !c.texto)
        return recusa("LogMailFileParser::msgs_per_hour_handle_SUBMIT : Params inv\xE1lidos.\r\n");
    if (c.n < 7) return 0;
    Trabalho* m = trabalhos_.novo(c.id, c[5]);
    m->int_user = getUserType(c[4]) == INTERNO;
    m->size = static_cast<std::uint32_t>(decimal32(c[6]));
    return 1;
}

// A message whose submission was not seen is not counted. No event blocks attachments yet. A spam
// or virus message counts here for the second time.
int Relatos::hora_end(MsgsData* hora, const Campos& c) {
    if (!hora || !c.texto || c.n < 4)
        return recusa("LogMailFileParser::msgs_per_hour_handle_END : Params inv\xE1lidos.\r\n");
    const Trabalho* m = trabalhos_.acha(c.id);
    if (!m) return 1;
    const bool falhou = m->error || m->fatal_error;
    if (falhou)
        ++hora->error;
    else if (m->spam)
        ++hora->spam;
    else if (m->virus)
        ++hora->virus;
    if (!falhou) {
        ++(m->int_user ? hora->msgs_int : hora->msgs_ext);
        (m->int_user ? hora->bytes_int : hora->bytes_ext) += m->size;
    }
    return 1;
}

int Relatos::hora_erro(MsgsData* hora, const Campos& c) {
    if (!hora || c.n < 4)
        return recusa("LogMailFileParser::msgs_per_hour_handle_ERROR : Params inv\xE1lidos.\r\n");
    trabalhos_.acha_ou_novo(c.id)->error = true;
    return 1;
}

int Relatos::hora_virus(MsgsData* hora, const Campos& c) {
    if (c.n <= 3)
        return recusa(
            "LogMailFileParser::msgs_per_hour_handle_VIRUS : linha do log mal formada\r\n");
    trabalhos_.acha_ou_novo(c.id)->virus = true;
    ++hora->virus;
    return 1;
}

int Relatos::hora_spam(MsgsData* hora, const Campos& c) {
    if (c.n <= 3) {
        // Under the other event's name, as the traces have always said it.
        return recusa(
            "LogMailFileParser::msgs_per_hour_handle_VIRUS : linha do log mal formada\r\n");
    }
    trabalhos_.acha_ou_novo(c.id)->spam = true;
    ++hora->spam;
    return 1;
}

// --- The public handlers.

int LogMailFileParser::msgs_per_hour_handle_SUBMIT(long, MsgsData* hora, char** campos, int n) {
    return relatos_->hora_submit(hora, campos_de(campos, n));
}
int LogMailFileParser::msgs_per_hour_handle_DELIVER(long t, MsgsData* hora, const char* id) {
    if (t != 0 && hora && id) return 1;
    return recusa("LogMailFileParser::msgs_per_hour_handle_DELIVER : Params inv\xE1lidos.\r\n");
}
int LogMailFileParser::msgs_per_hour_handle_OK(long, const char*, MsgsData*, char**, int) {
    return 1;
}
int LogMailFileParser::msgs_per_hour_handle_END(MsgsData* hora, const char*, char** campos, int n) {
    return relatos_->hora_end(hora, campos_de(campos, n));
}
int LogMailFileParser::msgs_per_hour_handle_ERROR(long, MsgsData* hora, char** campos, int n) {
    return relatos_->hora_erro(hora, campos_de(campos, n));
}
int LogMailFileParser::msgs_per_hour_handle_VIRUS(long, MsgsData* hora, char** campos, int n) {
    return relatos_->hora_virus(hora, campos_de(campos, n));
}
int LogMailFileParser::msgs_per_hour_handle_SPAM(long, MsgsData* hora, char** campos, int n) {
    return relatos_->hora_spam(hora, campos_de(campos, n));
}
