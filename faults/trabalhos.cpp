// The kinds of work on a tree of day files, as pages ask for them.
#include "faults/trabalhos.h"

#include <cstdio>
#include <memory>

#include "borland/XmlRegistry.h"
#include "common/auxiliar.h"

namespace falhas {

namespace {

// From the 30th of March to the 2nd of April 2009, UTC.
constexpr long inicio = 1238371200;
constexpr long fim = 1238716800;
constexpr char usuarios[] = "nfe,boletim,vendas";
constexpr char usuario[] = "nfe";

int dia(LogMailFileParser& p, LogResult& r, const std::string&) {
    r.last_report = MSGS_PER_DAY;
    return p.get_msgs_per_day(inicio, fim, &r.msgs_day, nullptr);
}

int dia_de_usuarios(LogMailFileParser& p, LogResult& r, const std::string&) {
    const std::unique_ptr<char[]> copia(copia_texto(usuarios));
    const std::unique_ptr<char*[]> nomes(explode(copia.get(), ',', nullptr));
    for (char** nome = nomes.get(); *nome; ++nome) {
        MsgsDayUser* u = new MsgsDayUser;
        std::snprintf(u->username, sizeof u->username, "%s", *nome);
        r.msgs_user_day.putFirst(u);
    }
    r.last_report = MSGS_PER_DAY;
    return p.get_msgs_per_day(inicio, fim, nullptr, &r.msgs_user_day);
}

int hora(LogMailFileParser& p, LogResult& r, const std::string&) {
    r.last_report = MSGS_PER_HOUR;
    return p.get_msgs_per_hour(inicio, fim, &r.msgs_hour);
}

int hora_de_usuario(LogMailFileParser& p, LogResult& r, const std::string&) {
    r.last_report = MSGS_PER_HOUR;
    return p.get_msgs_per_hour_per_user(inicio, fim, usuario, &r.msgs_hour);
}

int mensagens(LogMailFileParser& p, LogResult& r, const std::string&) {
    r.last_report = USERMSGS;
    return p.get_user_msgs(usuarios, usuarios, nullptr, 0, 0, inicio, fim, &r.user_msgs);
}

int historia(LogMailFileParser& p, LogResult& r, const std::string& id) {
    r.last_report = MSGTRACE;
    return p.msg_trace(id.c_str(), inicio, fim, r.msg_traced);
}

std::string linha(const LogResult& r) {
    char numeros[400];
    std::snprintf(numeros, sizeof numeros,
                  "%ld %ld %ld %ld %ld %ld %ld %ld %ld %ld %ld %ld %ld %ld %ld ", r.spam, r.virus,
                  r.att_blocked, r.error, r.msgs_int, r.msgs_ext, r.bytes_int, r.bytes_ext,
                  r.timestamp, r.interna, r.msg_time, r.msg_end_time, r.msg_size, r.enviada,
                  r.recipient_time);
    std::string t = numeros;
    for (const VeltoString* s :
         {&r.usuario, &r.msg_id, &r.msg_sendername, &r.recipient_name, &r.recipient_status_msg})
        (t += s->c_str()) += '|';
    return (t += r.msg_traced->str_error) += '\n';
}

}  // namespace

const std::vector<Relato> relatos = {
    {"messages per day", dia},        {"messages per day of users", dia_de_usuarios},
    {"messages per hour", hora},      {"messages per hour of a user", hora_de_usuario},
    {"messages of users", mensagens}, {"trace", historia},
};

std::string relata(const Relato& relato, LogMailFileParser& p, LogResult& r,
                   const std::string& id) {
    r.reset();
    std::string texto = std::to_string(relato.pede(p, r, id)) + "\n";
    while (r.fetch()) {
        texto += linha(r);
        while (r.fetch_msgs_per_day()) texto += "- " + linha(r);
    }
    texto += linha(r);
    while (r.fetch_recipient()) texto += "> " + linha(r);
    return texto;
}

bool prepara(LogMailFileParser& p, const std::string& dados) {
    char dominios[] = "metalurgica.example;matriz.metal.example;filial-sul.example";
    return p.setDataDir(dados.c_str()) && p.add_domain(dominios);
}

void escreve_registro(const std::string& pasta, const char* valor) {
    XmlRegistry r(pasta.c_str());
    if (!r.OpenKey("\\Um\\Dois", true)) return;
    for (const char* nome : {"a", "b", "c"})
        r.WriteString(nome, (std::string(valor) + " of " + nome).c_str());
    r.WriteInteger("n", valor[0]);
    r.DeleteValue("b");
}

std::string le_registro(const std::string& pasta) {
    XmlRegistry r(pasta.c_str());
    if (!r.OpenKey("\\Um\\Dois", false)) return "not found";
    VeltoStringList nomes;
    r.GetValueNames(&nomes);
    std::string texto;
    for (int i = 0; i < nomes.Count; ++i)
        (((texto += nomes[i].c_str()) += '=') += r.ReadString(nomes[i]).c_str()) += ' ';
    return texto += std::to_string(r.ReadInteger("n"));
}

}  // namespace falhas
