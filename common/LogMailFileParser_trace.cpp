// The history of one message, told from compact lines.
#include <cstdarg>
#include <cstring>

#include "common/LogMailFileParser_relatos.h"
#include "misc/numero.h"

namespace {

// Without an id there are no lines of its own.
bool e_dela(const char* id, char** campos) {
    return id && std::strcmp(campos[3], id) == 0;
}

void toma_id(Msg* m, const char* id) {
    std::memset(m->id, 0, sizeof m->id);
    std::memcpy(m->id, id, strnlen(id, sizeof m->id - 1));
}

// Appends a dated sentence to the message's text. Nothing when the local time cannot be had.
void acrescenta(Msg* m, long t, const std::string& frase) {
    const time_t quando = t;
    struct tm tm;
    if (!localtime_r(&quando, &tm)) return;
    char data[80];
    std::snprintf(data, sizeof data, "%02d/%02d/%04d %02d:%02d:%02d - ", tm.tm_mday, tm.tm_mon + 1,
                  tm.tm_year + 1900, tm.tm_hour, tm.tm_min, tm.tm_sec);
    m->str_error = std::string(m->str_error) + data + frase;
}

// What an error adds to the message's text, if so much room is left in it: the sentence and its
// margin. The margins differ, and one is too small for the date in front: then the text is cut.
// Pages have always shown it so.
struct Frase {
    const char* antes;
    const char* depois = "";
    std::ptrdiff_t margem = 0;
    ErrorType tipo;
    bool com_detalhe = false;  // for lines with a field 4, which is told between the two
};
constexpr std::ptrdiff_t sempre = -std::ptrdiff_t{TextoErro::capacidade};  // whatever room is left

// The first one that fits the line.
constexpr Frase frases[] = {
    {.antes = "A conex\xE3o foi encerrada no meio da transmiss\xE3o\n",
     .margem = 50,
     .tipo = etDATA},
    {.antes = "A mensagem foi rejeitada (muito grande).\n", .tipo = etSIZE},
    {.antes = "Mensagem rejeitada pelo relay ",
     .depois = " remetente invalido.\n",
     .margem = 29,
     .tipo = etSENDER,
     .com_detalhe = true},
    {.antes = "Mensagem rejeitada pelo relay.\n", .margem = sempre, .tipo = etSENDER},
};

}  // namespace

int LogMailFileParser::msg_trace(const char* msg_id, long start, long end, Msg* m) {
    if (!msg_id || !m || start > end)
        return recusa("LogMailFileParser::msg_trace : Params. inv\xE1lidos.\r\n");
    params p{};
    p.m = m;
    p.msg_id = const_cast<char*>(msg_id);
    relatos_->replay({data_dir, diario::compacto, start, end}, start, end, MSGTRACE, &p);
    return 1;
}

int LogMailFileParser::msg_trace_handle_SUBMIT(const char* id, long t, Msg* m, char** campos,
                                               int n) {
    if (n < 4)
        return recusa(
            "LogMailFileParser::msg_trace_handle_SUBMIT: N\xFAmeros de params. incorreto.\r\n");
    if (!e_dela(id, campos)) return 1;
    m->start_time = t;
    toma_id(m, campos[3]);
    if (n > 5) m->define_remetente(campos[5]);
    m->int_user = n > 4 && getUserType(campos[4]) == INTERNO;
    if (n > 6) m->size = static_cast<std::uint32_t>(decimal32(campos[6]));
    return 1;
}

int LogMailFileParser::msg_trace_handle_OK(const char* id, const char* destinatario, long t, Msg* m,
                                           char** campos, int n) {
    if (n < 5)
        return recusa(
            "LogMailFileParser::msg_trace_handle_OK: N\xFAmeros de params. incorreto.\r\n");
    if (e_dela(id, campos)) {
        if (RCPTO* r = procurar_recipient(&m->recipients, destinatario)) {
            // A recipient who was refused before gets an empty text, not that of a delivery.
            r->error = false;
            r->last_time = t;
            r->status_msg[0] = '\0';
        } else if ((r = m->addRecipient(destinatario))) {
            r->last_time = t;
            std::strcpy(r->status_msg, "Mensagem entregue.");
        }
    }
    // Any message will do: it shows that the destination answers again.
    m->remove_error(etCONNECT, destinatario);
    return 1;
}

int LogMailFileParser::msg_trace_handle_ERROR_DEST(const char* id, const char* destinatario, long t,
                                                   Msg* m, char** campos, int n) {
    if (n < 5)
        return recusa(
            "LogMailFileParser::msg_trace_handle_ERROR_DEST: N\xFAmeros de params. incorreto.\r\n");
    if (!e_dela(id, campos)) return 1;
    if (RCPTO* r = m->addRecipient(destinatario)) {
        r->last_time = t;
        r->error = true;
        std::snprintf(r->status_msg, sizeof r->status_msg, "Destinat\xE1rio %s inv\xE1lido.",
                      destinatario);
    }
    return 1;
}

int LogMailFileParser::msg_trace_handle_ERROR_FINAL(const char* id, long, Msg* m, char** campos,
                                                    int n) {
    if (n < 4)
        return recusa(
            "LogMailFileParser::msg_trace_handle_ERROR_FINAL: N\xFAmeros de params. "
            "incorreto.\r\n");
    if (!e_dela(id, campos)) return 1;
    std::string texto;
    std::size_t letras = 0;
    for (int i = 4; i < n && letras < TextoErro::capacidade; ++i) {
        letras += std::strlen(campos[i]);
        texto += campos[i];
        texto += ' ';
    }
    if (n > 4) m->str_error = texto;
    m->fatal_error = true;
    return 1;
}

int LogMailFileParser::msg_trace_handle_ERROR(const char* id, long t, Msg* m, char** campos, int n,
                                              ErrorType tipo) {
    // A line without an id applies to whatever message is traced.
    if (id && n > 3 && !e_dela(id, campos)) return 0;
    const char* detalhe = n > 4 ? campos[4] : nullptr;
    if (tipo == etCONNECT) {
        if (n > 5)
            m->str_error = std::string("Erro contactando o dom\xEDnio ") + detalhe + ".";
        else
            m->str_error = "Erro contactando o dom\xEDnio de destino.";
        // An error only if it is still pending at an END.
        m->add_error(etCONNECT, detalhe);
        return 1;
    }
    for (const Frase& f : frases) {
        if (f.tipo != tipo || (f.com_detalhe && !detalhe)) continue;
        const std::string frase =
            f.com_detalhe ? std::string(f.antes) + detalhe + f.depois : f.antes;
        const auto sobra =
            static_cast<std::ptrdiff_t>(TextoErro::capacidade - std::strlen(m->str_error));
        if (std::ssize(frase) + f.margem < sobra) acrescenta(m, t, frase);
        m->error = true;
        return 1;
    }
    return 1;
}

int LogMailFileParser::msg_trace_handle_END(const char* id, long t, Msg* m, char** campos, int n) {
    if (n < 4)
        return recusa(
            "LogMailFileParser::msg_trace_handle_END: N\xFAmeros de params. incorreto.\r\n");
    if (e_dela(id, campos)) m->end_time = t;
    // At the END of any message: what is pending by then counts.
    if (m->error || m->fatal_error) return 1;
    m->error = m->error_list.first() != nullptr;
    for (const RCPTO* r = m->recipients.first(); r && !m->error; r = r->next) m->error = r->error;
    return 1;
}

int LogMailFileParser::msg_trace_handle_VIRUS(const char* id, long, Msg* m, char** campos, int n) {
    if (n < 4)
        return recusa(
            "LogMailFileParser::msg_trace_handle_VIRUS: N\xFAmeros de params. incorreto.\r\n");
    if (!e_dela(id, campos)) return 1;
    toma_id(m, campos[3]);
    m->virus = true;
    return 1;
}
