// The rules of a log line.
#include "fuzz/referencia.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>

namespace referencia {

namespace {

struct Comeco {
    const char* com;
    int valor;
};

template <std::size_t n>
int classifica(const Comeco (&regras)[n], const std::string& palavra) {
    for (const Comeco& r : regras)
        if (palavra.starts_with(r.com)) return r.valor;
    return 0;
}

int agente_de(const std::string& p) {
    if (p.starts_with('M'))
        return p.size() < 5 ? 0 : p[4] == 'Q' ? MAILQ : p[4] == 'S' ? MAILSMTP : 0;
    static constexpr Comeco regras[] = {{"P", POPSRV}, {"A", ANTIVIRUS}, {"S", SPAMCATCHER}};
    return classifica(regras, p);
}

int status_de(const std::string& p) {
    static constexpr Comeco regras[] = {
        {"SU", SUBMIT},
        {"O", OK},
        {"R", READ},
        {"EN", END},
        {"ERROR_CONNECT", CONNECT},
        {"DE", DELIVER},
        {"ERROR_SENDER", SENDER},
        {"ERROR_DEST", DEST},
        {"ERROR_FINAL", FINAL},
        {"ERROR_DATA", DATA},
        {"ERROR_HELO", HELO},
        {"ERROR_SIZE", SIZE},
        {"ERROR_DOMAIN", DOMINIO},
        {"V", VIRUS},
        {"A", ARQUIVO},
        {"C", COPY},
        {"T", TAGGED},
        {"Q", QUARANTINE},
        {"DI", DISCARD},
    };
    return classifica(regras, p);
}

int mes_de(const std::string& l) {
    static constexpr Comeco regras[] = {{"Ap", 4}, {"A", 8},  {"D", 12}, {"F", 2},
                                        {"Ja", 1}, {"N", 11}, {"O", 10}, {"S", 9}};
    const std::string nome = l.substr(4, 3);
    if (nome.starts_with('J') && nome[1] != 'a') return nome[2] == 'n' ? 6 : 7;
    if (nome.starts_with('M')) return nome[2] == 'r' ? 3 : 5;
    return classifica(regras, nome);
}

}  // namespace

std::int32_t decimal(const std::string& texto) {
    return static_cast<std::int32_t>(std::strtoll(texto.c_str(), nullptr, 10));
}

Palavras palavras(const std::string& texto, std::size_t max) {
    Palavras achadas;
    std::size_t p = 0;
    while (achadas.size() < max) {
        p = texto.find_first_of(" \n\r", p);
        if (p == std::string::npos || texto[p] != ' ') break;
        p = texto.find_first_not_of(' ', p);
        if (p == std::string::npos || texto[p] == '\n') break;
        // Whatever begins a word belongs to it. The last one asked for is cut to that.
        std::size_t fim = std::min(texto.find_first_of(" \n\r", p + 1), texto.size());
        if (achadas.size() + 1 == max) fim = p + 1;
        achadas.push_back(texto.substr(p, fim - p));
        p = fim;
    }
    return achadas;
}

Palavras pedacos(std::string texto, char sep) {
    std::size_t total = 0;
    for (char& c : texto) {
        if (c != ' ' && total == 0) total = 1;
        if (c != sep) continue;
        c = '\0';
        ++total;
    }
    if (texto.ends_with('\n')) texto.back() = '\0';
    Palavras p;
    for (std::size_t de = 0; p.size() < total; de += p.back().size() + 1)
        p.emplace_back(texto.c_str() + de);
    return p;
}

Palavras linhas(const std::string& bytes, std::size_t limite) {
    Palavras l;
    for (std::size_t de = 0; de < bytes.size(); de += l.back().size())
        l.push_back(bytes.substr(de, std::min(bytes.find('\n', de) - de, limite - 1) + 1));
    return l;
}

time_t carimbo(const std::string& linha) {
    const std::string l = linha.c_str();
    if (l.size() < 24) return 0;
    struct tm tm = {};
    tm.tm_mon = mes_de(l) - 1;
    tm.tm_mday = decimal(l.substr(8));
    tm.tm_hour = decimal(l.substr(11));
    tm.tm_min = decimal(l.substr(14));
    tm.tm_sec = decimal(l.substr(17));
    const int ano = decimal(l.substr(20, 4));
    tm.tm_year = ano - 1900;
    tm.tm_isdst = -1;
    const bool legivel = tm.tm_mon >= 0 && tm.tm_mday >= 1 && tm.tm_mday <= 31 && ano >= 2000 &&
                         tm.tm_hour <= 23 && tm.tm_min <= 59 && tm.tm_sec <= 59;
    return legivel ? mktime(&tm) : 0;
}

int tipo_de_usuario(const std::string& p) {
    if (p.starts_with('I')) return 1;
    if (p.starts_with('P')) return 2;
    if (!p.starts_with('S') || p.size() < 9) return 0;
    return p[8] == 'I' ? 1 : p[8] == 'E' ? 2 : 0;
}

Evento::Evento(const std::string& linha) : t(carimbo(linha)), aceito(false) {
    const std::string bruta = linha.c_str();
    const std::string lida = bruta.substr(0, 299);
    if (lida.size() > 26) p = palavras(lida.substr(26), 99);
    agente = p.empty() ? 0 : agente_de(p[0]);
    status = p.size() < 2 ? 0 : status_de(p[1]);
    escreve(bruta);
}

// The compact line of an event that its handler takes, with these words; false when one is missing.
bool Evento::registra(int agente_escrito, int status_escrito,
                      std::initializer_list<std::size_t> quais, const std::string& fim) {
    if (std::any_of(quais.begin(), quais.end(), [this](std::size_t i) { return i >= p.size(); }))
        return false;
    char inicio[40];
    std::snprintf(inicio, sizeof inicio, "%x %d %d", static_cast<unsigned>(t), agente_escrito,
                  status_escrito);
    compacta = inicio;
    for (std::size_t i : quais) compacta += " " + p[i];
    compacta += fim;
    return true;
}

void Evento::escreve(const std::string& bruta) {
    const auto resto = [&](std::size_t coluna) {
        return bruta.size() > coluna ? bruta.substr(coluna) : "\n";
    };
    if (agente == SPAMCATCHER) {
        aceito = status >= COPY && status <= DISCARD && registra(2, SPAM, {3});
    } else if (agente == ANTIVIRUS) {
        aceito = status == VIRUS && registra(2, VIRUS, {3});
    } else if (agente == POPSRV && status == READ) {
        if (p.size() < 4) p.resize(4, "(null)");
        registra(POPSRV, READ, {3});
    } else if (agente == MAILQ && status == SUBMIT) {
        // The sender was left out: it is empty and the size stands in its place.
        if (p.size() > 7 && p[7] == "com") p.insert(p.begin() + 7, "");
        aceito = registra(MAILQ, SUBMIT, {3, 5, 7, 9});
    } else if (agente == MAILQ && (status == OK || status == END)) {
        aceito = status == OK ? registra(MAILQ, OK, {3, 5}) : registra(MAILQ, END, {3});
    } else if ((agente == MAILQ || agente == MAILSMTP) && status == DELIVER) {
        aceito = registra(2, DELIVER, {3});
    } else if (agente == MAILSMTP && status == DOMINIO) {
        aceito = p.size() > 4 && p[4] == "Dominio" && registra(2, DOMINIO, {3, 5});
    } else if (agente == MAILSMTP && status == FINAL) {
        aceito = registra(2, FINAL, {3}, " " + resto(71));
    } else if (agente == MAILSMTP && (status == END || status == DATA || status == SIZE)) {
        aceito = registra(2, status, {3});
    } else if (agente == MAILSMTP && (status == OK || status == DEST || status == HELO)) {
        aceito = registra(2, status, {3, 5});
    } else if (agente == MAILSMTP && status == CONNECT) {
        aceito = registra(2, CONNECT, {3, 6});
    } else if (agente == MAILSMTP && status == SENDER) {
        aceito = registra(2, SENDER, {3, 8});
    } else {
        char inicio[40];
        std::snprintf(inicio, sizeof inicio, "%x %d ", static_cast<unsigned>(t), agente);
        compacta = inicio + resto(agente == MAILSMTP ? 37 : 35);
    }
}

}  // namespace referencia
