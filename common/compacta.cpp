// The lines of a compact file: writing them, and reading them fast.
#include "common/compacta.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>

#include "misc/escrita.h"

namespace compacta {

std::string_view escreve_hora(char (&texto)[maior_hora], time_t t) {
    return {texto, std::to_chars(texto, std::end(texto), static_cast<std::uint32_t>(t), 16).ptr};
}

void escreve(std::FILE* f, std::string_view hora, Agent agente, Status status,
             std::initializer_list<std::string_view> campos, bool fim) {
    std::size_t maior = hora.size() + 2 * Escrita::maior_numero + campos.size() + 3;
    for (const std::string_view campo : campos) maior += campo.size();
    Escrita linha(f, maior);
    linha.texto(hora).letra(' ').numero(agente).letra(' ').numero(status);
    for (const std::string_view campo : campos) linha.letra(' ').texto(campo);
    if (fim) linha.letra('\n');
    linha.termina();
}

void copia(std::FILE* f, std::string_view hora, Agent agente, std::string_view resto) {
    Escrita linha(f, hora.size() + Escrita::maior_numero + 2 + resto.size());
    linha.texto(hora).letra(' ').numero(agente).letra(' ').texto(resto).termina();
}

}  // namespace compacta

bool LeitorDeCabecas::converte(const char* digitos) {
    std::uint32_t t;
    if (!oito_hexadecimais(digitos, t)) return false;
    digitos_ = oito_bytes(digitos);
    t_ = static_cast<time_t>(t);
    return true;
}

Agulha::Agulha(const char* texto) : texto_(texto), tamanho_(std::strlen(texto)) {
    const std::size_t fim = std::min(tamanho_, alcance);
    const std::size_t n = std::min(fim, sizeof oito_), falta = sizeof oito_ - n;
    desvio_ = static_cast<std::ptrdiff_t>(fim) - static_cast<std::ptrdiff_t>(sizeof oito_);
    std::memcpy(reinterpret_cast<char*>(&oito_) + falta, texto + fim - n, n);
    std::memset(reinterpret_cast<char*>(&mascara_) + falta, 0xFF, n);
}

bool Agulha::toda(const char* campo, const char* fim) const {
    if (fim - campo <= static_cast<std::ptrdiff_t>(tamanho_)) return false;
    const char depois = campo[tamanho_];
    return (depois == ' ' || depois == '\n' || depois == '\0') &&
           std::memcmp(campo, texto_, tamanho_) == 0;
}

void Crivo::define(bool ve_end) {
    ve_end_ = ve_end;
    pendentes_.clear();
}

// Whether the field behind the id, which begins at `id`, is one of the pending texts.
inline bool Crivo::nomeia(const char* id, const char* fim) const {
    static_assert(Agulha::alcance < LeitorLinhas::folga);  // the field begins at `fim` + 1 at most
    const char* campo = id + primeiro_branco(id, static_cast<std::size_t>(fim - id)) + 1;
    for (const Agulha& a : pendentes_)
        if (a.igual(campo, fim)) return true;
    return false;
}

inline bool Crivo::importa(const char* linha, std::size_t n, LeitorDeCabecas& cabecas) const {
    Cabeca c;
    if (!cabecas.le(linha, n, c) || c.t > fim_) return true;
    if (ve_end_ && c.status == END) return true;
    const char *id = linha + c.id, *fim = linha + n;
    if (id_.igual(id, fim)) return true;
    // The status is compared last: the name hardly ever matches, but half of the lines are an OK.
    return !pendentes_.empty() && nomeia(id, fim) && c.status == OK;
}

std::size_t Crivo::sobra(const char* p, std::size_t n, std::size_t maior_linha) {
    std::size_t inicio = 0;  // of the line whose end is looked for
    LeitorDeCabecas cabecas;
    while (true) {
        const std::size_t base = inicio;
        const std::size_t achados =
            finais_.acha(p + base, std::min(n - base, FinaisDeLinha::maior));
        for (std::size_t i = 0; i < achados; ++i) {
            const std::size_t fim = base + finais_[i] + 1;
            if (fim - inicio > maior_linha || importa(p + inicio, fim - inicio, cabecas))
                return inicio;
            inicio = fim;
        }
        if (achados == 0) return inicio;
    }
}

void LeitorCompacto::abre(int fd) {
    leitor_.abre(fd);
    lidas_ = tomadas_ = 0;
}

void LeitorCompacto::passa(Crivo& crivo) {
    std::size_t quantos;
    const char* lidos = leitor_.lidos(quantos);
    leitor_.pula(crivo.sobra(lidos, quantos, maior_linha));
}

bool LeitorCompacto::le_lote(bool so_uma, const bool (&serve)[LeitorDeCabecas::num_status]) {
    LeitorLinhas::Trecho trechos[maior_lote];
    const std::size_t lidas = leitor_.varias(trechos, so_uma ? 1 : maior_lote, maior_linha);
    time_t primeira = std::numeric_limits<time_t>::max(), ultima = 0;
    std::size_t i = 0, servem = 0;
    for (; i < lidas; ++i) {
        Linha& l = linhas_[i];
        l.texto = trechos[i].inicio;
        l.tamanho = trechos[i].tamanho;
        l.usual = cabecas_.le(l.texto, l.tamanho, l.cabeca);
        if (!l.usual) break;
        primeira = std::min(primeira, l.cabeca.t);
        ultima = std::max(ultima, l.cabeca.t);
        quais_servem_[servem] = static_cast<std::uint8_t>(i);
        servem += serve[l.cabeca.status];
    }
    usuais_ = i != 0;
    lidas_ = i == 0 && lidas != 0 ? 1 : i;
    tomadas_ = 0;
    if (lidas_ < lidas) leitor_.devolve(trechos[lidas_]);
    primeira_ = primeira;
    ultima_ = ultima;
    servem_ = servem;
    return lidas_ != 0;
}

char* LeitorCompacto::copia(const Linha& linha) {
    std::memcpy(copia_, linha.texto, linha.tamanho);
    copia_[linha.tamanho] = '\0';
    return copia_;
}

void LeitorCompacto::separa(const Linha& linha, Partes& p) {
    p.linha = &linha;
    p.id = Chave();
    const std::size_t fim = linha.tamanho - 1;
    if (fim >= Cortes::maior || linha.texto[fim] != '\n') return;
    Cortes cortes = copia_palavras(p.texto, linha.texto);
    cortes.limita(fim);
    p.inicios[0] = 0;
    p.campos = 1;
    // A line with another control than its end may mean something else.
    const bool brancos = cortes.para_cada([&](std::size_t i) {
        p.inicios[p.campos++] = static_cast<std::uint8_t>(i + 1);
        return linha.texto[i] == ' ';
    });
    if (!brancos) return;
    p.inicios[p.campos] = static_cast<std::uint8_t>(fim + 1);
    p.id = Chave(p.texto + p.inicios[3], static_cast<std::size_t>(p.inicios[4] - p.inicios[3] - 1));
}

int LeitorCompacto::campos(Partes& p, char** campos) {
    if (!p.id.texto) {
        const int n = reparte(copia(*p.linha), ' ', campos);
        if (n > 3) p.id = Chave(campos[3]);
        return n;
    }
    for (int i = 0; i < p.campos; ++i) campos[i] = p.texto + p.inicios[i];
    return p.campos;
}
