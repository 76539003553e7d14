// Words of a log line: what they mean, how a line is split, and the lookups over the records.
#include "common/auxiliar.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "misc/palavras.h"

namespace {

template <class T, class Teste>
T* primeiro(const DList<T>* lista, Teste serve) {
    T* e = lista->first();
    while (e && !serve(e)) e = e->next;
    return e;
}

bool igual(const char* a, const char* b) {
    return std::strcmp(a, b) == 0;
}

bool comeca(const char* palavra, const char* com) {
    return std::strncmp(palavra, com, std::strlen(com)) == 0;
}

Status status_de_erro(const char* palavra) {
    // The order matters: ERROR_CONNECT is a prefix of ERROR_CONNECTION and takes its lines too.
    static constexpr struct {
        const char* inicio;
        Status status;
    } erros[] = {
        {"ERROR_CONNECT", ERROR_CONNECT}, {"ERROR_CONNECTION", ERROR_CONNECTION},
        {"ERROR_SENDER", ERROR_SENDER},   {"ERROR_FINAL", ERROR_FINAL},
        {"ERROR_DEST", ERROR_DEST},       {"ERROR_SIZE", ERROR_SIZE},
        {"ERROR_DOMAIN", ERROR_DOMAIN},   {"ERROR_HELO", ERROR_HELO},
        {"ERROR_DATA", ERROR_DATA},
    };
    for (const auto& e : erros)
        if (comeca(palavra, e.inicio)) return e.status;
    return STATUS_UNKNOWN;
}

// The status with this first letter, provided that the second one is `segunda` (NUL: any).
struct PorLetra {
    char segunda;
    Status status;
};

constexpr auto status_por_letra = [] {
    std::array<PorLetra, 26> t{};
    t['O' - 'A'] = {'\0', OK};
    t['E' - 'A'] = {'N', END};
    t['R' - 'A'] = {'\0', READ};
    t['S' - 'A'] = {'U', SUBMIT};
    t['D' - 'A'] = {'E', DELIVER};
    t['V' - 'A'] = {'\0', VIRUS};
    t['A' - 'A'] = {'\0', ARQUIVO};
    t['C' - 'A'] = {'\0', COPY};
    t['T' - 'A'] = {'\0', TAGGED};
    t['Q' - 'A'] = {'\0', QUARANTINE};
    return t;
}();

char minuscula(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

}  // namespace

int getTokens(char* line, char** tokens, int max) {
    int n = -1;  // the word at `line` itself is not stored
    const std::size_t fim =
        percorre_palavras(line, std::strlen(line), max, [&](std::size_t inicio, std::size_t fim) {
            line[fim] = '\0';
            if (n >= 0) tokens[n] = line + inicio;
            ++n;
        });
    line[fim] = '\0';
    return n;
}

int reparte(char* str, char sep, char** pedacos) {
    char* const fim = str + std::strlen(str);
    // A text of blanks only has no first piece. With the blank as separator, neither has a text
    // that begins with one: it loses its last piece instead.
    const bool primeiro =
        sep == ' ' ? str != fim && *str != ' ' : str[std::strspn(str, " ")] != '\0';
    int separadores = 0;
    pedacos[0] = str;
    for (char* p = str;
         (p = static_cast<char*>(std::memchr(p, sep, static_cast<std::size_t>(fim - p)))); ++p) {
        *p = '\0';
        pedacos[++separadores] = p + 1;
    }
    if (str != fim && fim[-1] == '\n') fim[-1] = '\0';
    return separadores + primeiro;
}

char** explode(char* str, char sep, int* count) {
    const auto separadores = std::count(str, str + std::strlen(str), sep);
    auto pedacos = std::make_unique<char*[]>(static_cast<std::size_t>(separadores) + 2);
    const int total = reparte(str, sep, pedacos.get());
    if (total == 0) return nullptr;
    pedacos[static_cast<std::size_t>(total)] = nullptr;
    if (count) *count = total;
    return pedacos.release();
}

time_t strhex_to_time(const char* s) {
    return s && *s ? static_cast<time_t>(std::strtoll(s, nullptr, 16)) : 0;
}

Agent getAgent(const char* word) {
    if (!word) return AGENT_UNKNOWN;
    switch (word[0]) {
        case 'M':  // MAILQ and MAILSMTP differ in the fifth letter
            if (!word[1] || !word[2] || !word[3]) return AGENT_UNKNOWN;
            return word[4] == 'Q' ? MAILQ : word[4] == 'S' ? MAILSMTP : AGENT_UNKNOWN;
        case 'P':
            return POPSRV;
        case 'A':
            return ANTIVIRUS;
        case 'S':
            return SPAMCATCHER;
        default:
            return AGENT_UNKNOWN;
    }
}

Status getStatus(const char* word) {
    if (!word) return STATUS_UNKNOWN;
    const auto letra = static_cast<unsigned char>(word[0] - 'A');
    if (letra >= std::size(status_por_letra)) return STATUS_UNKNOWN;
    const PorLetra& p = status_por_letra[letra];
    if (p.segunda == '\0' || p.segunda == word[1]) return p.status;
    if (word[0] == 'E') return status_de_erro(word);
    return word[0] == 'D' && word[1] == 'I' ? DISCARD : STATUS_UNKNOWN;
}

UserType getUserType(const char* word) {
    if (!word) return USER_UNKNOWN;
    switch (word[0]) {
        case 'S':
            if (strnlen(word, 9) < 9) return USER_UNKNOWN;
            return word[8] == 'I' ? INTERNO : word[8] == 'E' ? EXTERNO : USER_UNKNOWN;
        case 'I':
            return INTERNO;
        case 'P':
            return EXTERNO;
        default:
            return USER_UNKNOWN;
    }
}

bool igual_sem_caixa(const char* a, const char* b, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        if (minuscula(a[i]) != minuscula(b[i])) return false;
        if (a[i] == '\0') return true;
    }
    return true;
}

Usuario* procurar_usuario(const DList<Usuario>* lista, const char* name, bool prefix) {
    return primeiro(lista, [=](const Usuario* u) {
        const char* nome = chave(*u);
        return igual(nome, name) || (prefix && igual_sem_caixa(nome, name, std::strlen(nome)));
    });
}

Usuario* procurar_usuario(const Tabela<Usuario>* tabela, const char* name, bool prefix) {
    const DList<Usuario>& lista = *tabela;
    return prefix ? procurar_usuario(&lista, name, prefix) : tabela->procurar(name);
}

MsgsDayUser* procurar_usuario(const DList<MsgsDayUser>* lista, const char* name) {
    return primeiro(lista, [=](const MsgsDayUser* u) { return igual(u->username, name); });
}

Msg* procurar_msg(const DList<Msg>* lista, const char* id) {
    return primeiro(lista, [=](const Msg* m) { return igual(m->id, id); });
}

Msg* procurar_msg(const Tabela<Msg>* tabela, const char* id) {
    return tabela->procurar(id);
}

UserMsgs* procurar_msg(const DList<UserMsgs>* lista, const char* id) {
    return primeiro(lista, [=](const UserMsgs* m) { return igual(m->msg_id, id); });
}

RCPTO* procurar_recipient(const DList<RCPTO>* lista, const char* name) {
    return primeiro(lista, [=](const RCPTO* r) { return igual(r->username, name); });
}

Domain* procurar_dominio(const DList<Domain>* lista, const char* domain) {
    return primeiro(
        lista, [=](const Domain* d) { return std::strncmp(d->name, domain, sizeof d->name) == 0; });
}

int cmp_func(const void* a, const void* b) {
    const time_t ta = static_cast<const InputFiles*>(a)->iTime;
    const time_t tb = static_cast<const InputFiles*>(b)->iTime;
    return ta < tb ? -1 : ta > tb;
}
