// One dispatcher line taken apart.
#include "common/Evento.h"

#include <algorithm>
#include <cstring>

void Evento::separa(const char* linha, std::size_t n) {
    separa_palavras(linha, n);
    agente_ = getAgent(palavra(0).data());
    status_ = getStatus(palavra(1).data());
    id_ = chave_da(3);
    const bool aceita = status_ == OK && (agente_ == MAILQ || agente_ == MAILSMTP);
    toca_usuario_ = aceita || (submissao() && getUserType(palavra(5).data()) == INTERNO);
    endereco_ = aceita ? chave_da(5) : submissao() ? chave_da(7) : Chave();
}

void Evento::separa_palavras(const char* linha, std::size_t n) {
    lidas_ = 0;
    if (n <= inicio_das_palavras_ || tem_nul(linha, inicio_das_palavras_)) return;
    if (separa_regular(linha, n)) return;
    n = std::min(n, maior_) - inicio_das_palavras_;
    linha += inicio_das_palavras_;
    separa_qualquer(linha, strnlen(linha, n));
}

// Takes a line of the usual kind: not long, one blank between the words, none behind the last, and
// the line's end behind that. False when it is of another kind. Behind the stamp, with '_' for a
// blank and '.' for a NUL:
//
//     linha          39_MAILQ_DELIVER_Msg_69AF5F9E3779B980_tentativa_1\n
//     texto_         39.MAILQ.DELIVER.Msg.69AF5F9E3779B980.tentativa.1.
//     cortes           1     1       1   1                1         1 1
//     separadores_     2     8       16  20               37        47 49
//
// The first word is not kept. Word 0 stands between the first two places, and so on; the last place
// is the end of the line.
bool Evento::separa_regular(const char* linha, std::size_t n) {
    std::size_t fim = n - 1;
    if (linha[fim] != '\n') return false;
    fim -= linha[fim - 1] == '\r';
    if (fim - inicio_das_palavras_ >= Cortes::maior || linha[fim - 1] == ' ') return false;
    fim -= inicio_das_palavras_;
    linha += inicio_das_palavras_;
    Cortes cortes = copia_palavras(texto_, linha);
    cortes.limita(fim);
    if (cortes.seguidos()) return false;
    std::uint16_t* p = separadores_;
    const bool brancos = cortes.para_cada([&](std::size_t i) {
        *p++ = static_cast<std::uint16_t>(i);
        return linha[i] == ' ';
    });
    *p = static_cast<std::uint16_t>(fim);
    if (brancos)
        lidas_ = static_cast<int>(std::min<std::ptrdiff_t>(p - separadores_, palavras_lidas));
    return brancos;
}

// Takes any line, and puts its words one behind the other.
void Evento::separa_qualquer(const char* texto, std::size_t n) {
    int lidas = 0;
    std::size_t i = 0;
    // One word more than is read: the last one is cut.
    percorre_palavras(texto, n, palavras_lidas + 1, [&](std::size_t inicio, std::size_t fim) {
        std::memcpy(texto_ + i, texto + inicio, fim - inicio);
        i += fim - inicio;
        texto_[i] = '\0';
        separadores_[lidas++] = static_cast<std::uint16_t>(i++);
    });
    lidas_ = std::clamp(lidas - 1, 0, palavras_lidas);
}

Chave Evento::chave_da(int i) const {
    const std::string_view p = palavra(i);
    return p.data() ? Chave(p.data(), p.size()) : Chave();
}
