// The rules of a day's events and of its statistics file.
#include <cstdio>

#include "fuzz/referencia.h"

namespace referencia {

int Dia::usuario(const std::string& nome) {
    for (std::size_t i = 0; i < usuarios_.size(); ++i)
        if (usuarios_[i].nome == nome) return static_cast<int>(i);
    usuarios_.push_back({nome});
    return static_cast<int>(usuarios_.size()) - 1;
}

// Ids are kept cut and looked up whole; of equal ones the newest answers.
Dia::Mensagem* Dia::acha(const std::string& id) {
    for (auto m = mensagens_.rbegin(); m != mensagens_.rend(); ++m)
        if (m->id == id) return &*m;
    return nullptr;
}

Dia::Mensagem& Dia::acha_ou_nova(const std::string& id) {
    if (Mensagem* m = acha(id)) return *m;
    mensagens_.emplace_back().id = id.substr(0, 23);
    return mensagens_.back();
}

unsigned Dia::periodo(time_t t) {
    const time_t desde = t - inicio_;
    const unsigned p = desde < 0 ? 0 : desde >= 86400 ? 23 : static_cast<unsigned>(desde / 3600);
    if (!contou_) primeiro_ = p;
    contou_ = true;
    ultimo_ = p;
    return p;
}

void Dia::conta_envio(const Mensagem& m, time_t t, std::uint32_t Contadores::*tambem) {
    if (t == 0 || !m.interna || m.remetente < 0) return;
    Contadores& c = usuarios_[static_cast<std::size_t>(m.remetente)].periodos[periodo(t)];
    ++c.sent;
    c.bytes_sent += m.tamanho;
    if (tambem) ++(c.*tambem);
}

// An acceptance settles what was pending with its domain, and one broken transmission.
void Dia::resolve(Mensagem& m, const std::string* dominio) {
    const auto remove = [&m](int tipo, const std::string* texto) {
        for (auto e = m.erros.rbegin(); e != m.erros.rend(); ++e)
            if (e->tipo == tipo && (!texto || e->texto == *texto)) {
                m.erros.erase(std::next(e).base());
                return;
            }
    };
    if (dominio)
        for (const int tipo : {SENDER, HELO, CONNECT, DOMINIO}) remove(tipo, dominio);
    remove(DATA, nullptr);
}

void Dia::submetida(const Evento& e) {
    const bool interna = tipo_de_usuario(e.p[5]) == 1;
    const int u = interna ? usuario(e.p[7]) : -1;
    Mensagem& m = acha_ou_nova(e.p[3]);
    m.tamanho = static_cast<std::uint32_t>(decimal(e.p[9]));
    m.remetente = u;
    m.interna |= interna;
}

void Dia::aceita(const Evento& e) {
    Mensagem* conhecida = acha(e.p[3]);
    if (conhecida && e.agente == MAILSMTP) {
        const std::size_t arroba = e.p[5].find('@');
        const std::string dominio = arroba == std::string::npos ? "" : e.p[5].substr(arroba + 1);
        if (arroba != std::string::npos) resolve(*conhecida, &dominio);
        resolve(*conhecida, nullptr);
    }
    Mensagem& m = acha_ou_nova(e.p[3]);
    const auto u = static_cast<std::size_t>(usuario(e.p[5]));
    if (e.t != 0) {
        Contadores& c = usuarios_[u].periodos[periodo(e.t)];
        ++c.recv;
        c.bytes_recv += m.tamanho;
    }
    m.enviada = true;
    if (m.tentativas == 0) m.tentativas = 1;
}

void Dia::falha(const Evento& e) {
    Mensagem* m = acha(e.p[3]);
    if (!m) return;
    if (e.status != DOMINIO && m->remetente >= 0 && e.t != 0)
        ++usuarios_[static_cast<std::size_t>(m->remetente)].periodos[periodo(e.t)].error;
    if (e.status == FINAL && m->tentativas == 0) m->tentativas = 1;
    if (e.status == FINAL || e.status == SIZE) {
        m->fatal = true;
        return;
    }
    m->erro = true;
    const std::string texto = e.status == CONNECT  ? e.p[6]
                              : e.status == SENDER ? e.p[8]
                              : e.status == DEST   ? "dest"
                              : e.status == DATA   ? ""
                                                   : e.p[5];
    bool repetido = false;
    for (const Erro& outro : m->erros) repetido |= outro.tipo != DATA && outro.texto == texto;
    if (e.status == DATA || !repetido) m->erros.push_back({e.status, texto});
}

void Dia::conta(const Evento& e) {
    if (!e.aceito) return;
    if (e.agente == SPAMCATCHER) {
        Mensagem& m = acha_ou_nova(e.p[3]);
        m.spam = true;
        conta_envio(m, e.t, &Contadores::spam);
    } else if (e.agente == ANTIVIRUS) {
        if (Mensagem* m = acha(e.p[3])) {
            m->virus = true;
            m->fim = e.t;
            conta_envio(*m, e.t, &Contadores::virus);
        }
    } else if (e.status == SUBMIT) {
        submetida(e);
    } else if (e.status == OK) {
        aceita(e);
    } else if (e.status == DELIVER) {
        ++acha_ou_nova(e.p[3]).tentativas;
    } else if (e.status == END) {
        if (Mensagem* m = acha(e.p[3]); m && e.agente == MAILSMTP) m->erro = !m->erros.empty();
        Mensagem& m = acha_ou_nova(e.p[3]);
        m.fim = e.t;
        conta_envio(m, e.t, nullptr);
    } else {
        falha(e);
    }
}

std::string Dia::estatistica() const {
    std::uint32_t spam = 0, virus = 0, erro = 0, msgs[2] = {}, bytes[2] = {};
    for (const Mensagem& m : mensagens_) {
        const bool terminada = m.fim != 0 || m.fatal;
        const bool falhou = m.erro || m.fatal;
        if (terminada) virus += m.virus;
        if (m.tentativas == 0 || (!terminada && !m.erro)) continue;
        erro += falhou;
        if (terminada) spam += m.spam;
        if (falhou && !m.enviada) continue;
        ++msgs[m.interna];
        bytes[m.interna] += m.tamanho;
    }
    char linha[200];
    std::snprintf(linha, sizeof linha, "%ld %ld %d %d %d 0 %d %d %d %d\n",
                  static_cast<long>(inicio_ + primeiro_ * 3600),
                  static_cast<long>(inicio_ + (ultimo_ + 1) * 3600 - 1), spam, virus, erro, msgs[1],
                  bytes[1], msgs[0], bytes[0]);
    std::string texto = linha;
    for (unsigned p = 0; p < 24; ++p) {
        texto += "[" + std::to_string(inicio_ + p * 3600) + "]\n";
        for (auto u = usuarios_.rbegin(); u != usuarios_.rend(); ++u) {
            const Contadores& c = u->periodos[p];
            if (!(c.sent | c.bytes_sent | c.recv | c.bytes_recv | c.virus | c.spam | c.error))
                continue;
            std::snprintf(linha, sizeof linha, " %d %d %d %d %d %d %d 0\n", c.sent, c.bytes_sent,
                          c.recv, c.bytes_recv, c.virus, c.spam, c.error);
            texto += u->nome + linha;
        }
    }
    return texto;
}

}  // namespace referencia
