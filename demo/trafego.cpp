// One message from its submission to its end.
#include "demo/trafego.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "demo/nomes.h"

namespace gerador {

// Readers take each argument by its place among the words, so the words around it are counted; of
// the two ERROR_DOMAIN texts only the one with "Dominio" is an event to them.
const std::array<TipoErro, n_tipos_erro> tipos_erro = {{
    {"connect", "ERROR_CONNECT", "conectando em @ porta 25", Depois::tenta_de_novo, 0.025},
    {"connection", "ERROR_CONNECTION", "conexao com @ perdida", Depois::tenta_de_novo, 0.008},
    {"sender", "ERROR_SENDER", "remetente recusado pelo servidor @ 451", Depois::tenta_de_novo,
     0.003},
    {"dest", "ERROR_DEST", "destinatario * recusado 550", Depois::segue, 0.015},
    {"final", "ERROR_FINAL", "550 5.1.1 Usu\xE1rio inexistente em @", Depois::desiste, 0.01},
    {"data", "ERROR_DATA", "", Depois::tenta_de_novo, 0.004},
    {"helo", "ERROR_HELO", "servidor @ recusou a saudacao", Depois::tenta_de_novo, 0.003},
    {"size", "ERROR_SIZE", "limite de @ excedido", Depois::desiste, 0.003},
    {"domain", "ERROR_DOMAIN", "Dominio @ sem resposta", Depois::tenta_de_novo, 0.006},
    {"domain-sem-dominio", "ERROR_DOMAIN", "consulta de @ sem resposta", Depois::tenta_de_novo,
     0.003},
    {"retry-dest", "RETRY_DEST", "destinatario * adiado 450", Depois::tenta_de_novo, 0.005},
}};

Parametros::Parametros() {
    std::transform(tipos_erro.begin(), tipos_erro.end(), erros.begin(),
                   [](const TipoErro& e) { return e.parte; });
}

void Parametros::so_entregas() {
    spam = virus = retidas = 0;
    erros.fill(0);
}

unsigned Sorte::preferido(unsigned n) {
    const double k = std::exp(fracao() * std::log(n + 1.0)) - 1;
    return std::min(static_cast<unsigned>(k), n - 1);
}

const std::vector<Trafego::Evento>& Trafego::mensagem(std::time_t t, std::time_t meia_noite) {
    nova(t);
    caso();
    if (!p_.travessia) encurta(meia_noite);
    return eventos_;
}

// Makes the id: its beginning, then digits. An odd factor makes each number another id.
void Trafego::nomeia(std::time_t t) {
    char hora[16], digitos[32];
    std::snprintf(hora, sizeof hora, "%06X", static_cast<unsigned>(t >> 8) & 0xFFFFFF);
    std::snprintf(digitos, sizeof digitos, "%016llX",
                  static_cast<unsigned long long>(++numero_ * 0x9E3779B97F + p_.semente));
    id_ = p_.inicio_dos_ids.empty() ? hora : p_.inicio_dos_ids;
    id_ += digitos + id_.size();
}

// Draws the message's features and writes its submission.
void Trafego::nova(std::time_t t) {
    eventos_.clear();
    relogio_ = t;
    tentativas_ = 0;

    nomeia(t);
    const unsigned processo = sorte_.ate(100);
    processo_ = {static_cast<char>('0' + processo / 10), static_cast<char>('0' + processo % 10),
                 ' '};

    const double origem = sorte_.fracao();
    const char* tipo = origem < 0.30   ? "INTERNO"
                       : origem < 0.48 ? "SMTPCONNINT"
                       : origem < 0.90 ? "SMTPCONNEXT"
                       : origem < 0.97 ? "POP3"
                                       : "SMTPAUTH";
    const bool interno = origem < 0.48;
    local_ = sorte_.acontece(interno ? 0.4 : 0.92);

    destinos_.clear();
    do {
        destinos_.push_back(destino());
    } while (p_.destinatarios ? destinos_.size() < p_.destinatarios
                              : destinos_.size() < 40 && sorte_.acontece(0.725));

    std::string resto = "de ";
    if (sorte_.acontece(p_.sem_remetente)) {
        resto += "SMTPCONNEXT remetente";
    } else {
        resto += tipo;
        resto += " remetente ";
        resto += interno ? usuario_local(sorte_.preferido(p_.usuarios)) : remetente_externo();
    }
    // Most messages are a few kilobytes, the largest a megabyte.
    const double u = sorte_.fracao();
    resto += " com " + std::to_string(static_cast<unsigned>(700 * std::exp(7.3 * u * u * u)));
    evento("MAILQ SUBMIT", resto += " bytes");
    espera(sorte_.acontece(0.4) ? 600 : 30);
}

std::string Trafego::destino() {
    if (p_.destinatarios) return local_ ? usuario_local(nomes_++) : usuario_remoto(nomes_++);
    return local_ ? usuario_local(sorte_.preferido(p_.usuarios))
                  : usuario_remoto(sorte_.preferido(p_.usuarios * 3));
}

std::string Trafego::remetente_externo() {
    if (!p_.nomes_externos) return usuario_remoto(sorte_.preferido(p_.usuarios * 3));
    const unsigned nome = sorte_.ate(p_.nomes_externos);
    return usuario_do_dominio(nome, sorte_.ate(p_.dominios_externos));
}

void Trafego::evento(std::string_view agente_status, std::string_view resto) {
    std::string texto = processo_;
    texto.reserve(96);
    texto += agente_status;
    texto += " Msg ";
    texto += id_;
    if (!resto.empty()) (texto += ' ') += resto;
    eventos_.push_back({relogio_, std::move(texto)});
}

void Trafego::erro(const TipoErro& tipo) {
    std::string resto;
    for (const char* c = tipo.texto; *c; ++c) {
        if (*c == '@')
            resto += dominio(destinos_[0]);
        else if (*c == '*')
            resto += destinos_[0];
        else
            resto += *c;
    }
    evento(std::string("MAILSMTP ") + tipo.status, resto);
}

void Trafego::tentativa() {
    std::string resto = "tentativa " + std::to_string(++tentativas_);
    if (!local_) resto += " servidor " + servidor(dominio(destinos_[0]));
    evento(local_ ? "MAILQ DELIVER" : "MAILSMTP DELIVER", resto);
    espera(8);
}

// `sempre` false: the dispatcher may forget the line after a fatal error, unless midnight would
// then find the message in flight.
void Trafego::termina(bool sempre) {
    if (sempre || !p_.travessia || sorte_.acontece(0.7))
        evento(local_ ? "MAILQ END" : "MAILSMTP END", "");
}

// What befalls the message: the shares lie side by side between 0 and 1.
void Trafego::caso() {
    double u = sorte_.fracao();
    const auto cabe = [&u](double parte) { return (u -= parte) < 0; };
    if (cabe(p_.spam)) return caso_spam();
    if (cabe(p_.virus)) return caso_virus();
    if (cabe(p_.travessia ? p_.retidas : 0)) return caso_retida();
    for (std::size_t i = 0; i < tipos_erro.size(); ++i)
        if (cabe(p_.erros[i])) return caso_erro(tipos_erro[i]);
    entrega();
}

void Trafego::caso_spam() {
    static constexpr std::array vereditos = {"SPAMCATCHER TAGGED", "SPAMCATCHER QUARANTINE",
                                             "SPAMCATCHER DISCARD", "SPAMCATCHER COPY"};
    const unsigned qual = sorte_.ate(vereditos.size());
    const bool retirada = qual == 1 || qual == 2;
    if (retirada) local_ = true;
    evento(vereditos[qual], "pontos " + std::to_string(5 + sorte_.ate(30)));
    espera(5);
    if (retirada) return termina(true);
    entrega();
}

void Trafego::caso_virus() {
    evento("ANTIVIRUS VIRUS", "Teste.Inofensivo.7");
}

void Trafego::caso_retida() {
    local_ = false;
    destinos_ = {usuario_remoto(sorte_.preferido(p_.usuarios * 3))};
    insiste(tipos_erro[0], 1 + sorte_.ate(2), 86400);
    entrega();
}

void Trafego::caso_erro(const TipoErro& tipo) {
    if (local_) {
        local_ = false;
        destinos_ = {usuario_remoto(sorte_.preferido(p_.usuarios * 3))};
    }
    if (tipo.depois == Depois::tenta_de_novo) {
        insiste(tipo, 1 + sorte_.ate(4), 900);
        return sorte_.acontece(0.85) ? entrega() : desiste();
    }
    tentativa();
    erro(tipo);
    espera(3);
    if (tipo.depois == Depois::desiste) return termina(false);
    for (std::size_t i = 1; i < destinos_.size(); ++i) {
        evento("MAILSMTP OK", "para " + destinos_[i]);
        espera(3);
    }
    termina(true);
}

// Attempts that fail, ever further apart.
void Trafego::insiste(const TipoErro& tipo, unsigned vezes, unsigned intervalo) {
    for (unsigned i = 0; i < vezes; ++i) {
        tentativa();
        erro(tipo);
        espera(intervalo << i);
    }
}

void Trafego::entrega() {
    tentativa();
    for (const std::string& destino : destinos_) {
        evento(local_ ? "MAILQ OK" : "MAILSMTP OK",
               "para " + destino + (local_ ? "" : " resposta 250"));
        espera(3);
    }
    termina(true);
}

void Trafego::desiste() {
    tentativa();
    evento("MAILSMTP ERROR_FINAL", "551 4.4.7 Prazo esgotado, mensagem devolvida ao remetente");
    termina(false);
}

// Squeezes the message's times into what is left of its day, in the same order.
void Trafego::encurta(std::time_t meia_noite) {
    const std::time_t inicio = eventos_.front().quando;
    const std::time_t duracao = eventos_.back().quando - inicio;
    const std::time_t resta = meia_noite - 1 - inicio;
    if (duracao <= resta) return;
    for (Evento& e : eventos_) e.quando = inicio + (e.quando - inicio) * resta / duracao;
}

}  // namespace gerador
