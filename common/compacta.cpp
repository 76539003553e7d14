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

// The first eight bytes agree: now the whole field, and nothing but it. NUL ends it too, since a
// line with one is read as C text elsewhere.
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

inline bool Crivo::importa(Linha& l, LeitorDeCabecas& cabecas) const {
    if (!cabecas.le(l) || l.t > fim_) return true;
    if (ve_end_ && l.status == END) return true;
    const char *id = l.texto + l.id, *fim = l.texto + l.tamanho;
    if (id_.igual(id, fim)) return true;
    // The status is compared last: the name hardly ever matches, but half of the lines are an OK.
    return !pendentes_.empty() && nomeia(id, fim) && l.status == OK;
}

// Goes from line end to line end, a piece of text at a time. A piece may end within a line; the
// next piece then begins with that line again. Where a piece shows no line end, the text is over,
// or its line longer than any that is read in one: both are left to the reader.
std::size_t Crivo::sobra(const char* p, std::size_t n, std::size_t maior_linha) {
    std::size_t inicio = 0;  // of the line whose end is looked for
    LeitorDeCabecas cabecas;
    while (true) {
        const std::size_t base = inicio;
        const std::size_t achados =
            finais_.acha(p + base, std::min(n - base, FinaisDeLinha::maior));
        for (std::size_t i = 0; i < achados; ++i) {
            const std::size_t fim = base + finais_[i] + 1;
            Linha l;
            l.texto = p + inicio;
            l.tamanho = fim - inicio;
            if (l.tamanho > maior_linha || importa(l, cabecas)) return inicio;
            inicio = fim;
        }
        if (achados == 0) return inicio;
    }
}

void LeitorCompacto::passa(Crivo& crivo) {
    std::size_t quantos;
    const char* lidos = leitor_.lidos(quantos);
    leitor_.pula(crivo.sobra(lidos, quantos, maior_linha));
}

const Lote* LeitorCompacto::le_lote(std::size_t maior, const Statuses& serve) {
    LeitorLinhas::Trecho trechos[Lote::maior];
    const std::size_t lidas = leitor_.varias(trechos, maior, maior_linha);
    if (lidas == 0) return nullptr;
    time_t primeira = std::numeric_limits<time_t>::max(), ultima = 0;
    std::size_t i = 0, servem = 0;
    for (; i < lidas; ++i) {
        Linha& l = lote_.linhas[i];
        l.texto = trechos[i].inicio;
        l.tamanho = trechos[i].tamanho;
        l.usual = cabecas_.le(l);
        if (!l.usual) break;
        // Noted always and counted if it matters: whether it does is unpredictable.
        primeira = std::min(primeira, l.t);
        ultima = std::max(ultima, l.t);
        lote_.quais_servem[servem] = static_cast<std::uint8_t>(i);
        servem += serve[l.status];
    }
    // An unusual line ends the batch, and comes alone in the next one.
    lote_.usuais = i != 0;
    lote_.n = std::max<std::size_t>(i, 1);
    lote_.primeira = primeira;
    lote_.ultima = ultima;
    lote_.servem = servem;
    if (lote_.n < lidas) leitor_.devolve(trechos[lote_.n]);
    return &lote_;
}

char* LeitorCompacto::copia(const Linha& linha) {
    std::memcpy(copia_, linha.texto, linha.tamanho);
    copia_[linha.tamanho] = '\0';
    return copia_;
}

long LeitorCompacto::hora(const Linha& linha) {
    return strhex_to_time(copia(linha));
}

Campos LeitorCompacto::separa(const Linha& linha, Lugar& lugar) {
    constexpr Campos sem_textos{};
    const std::size_t fim = linha.tamanho - 1;
    if (fim >= Cortes::maior || linha.texto[fim] != '\n') return sem_textos;
    Cortes cortes = copia_palavras(lugar.texto, linha.texto);
    cortes.limita(fim);
    int n = 0;
    lugar.campos[n++] = lugar.texto;
    // Line feeds, tabs and other controls cut words here, but are letters to reparte().
    const bool brancos = cortes.para_cada([&](std::size_t i) {
        if (n == Lugar::maior) return false;
        lugar.campos[n++] = lugar.texto + i + 1;
        return linha.texto[i] == ' ';
    });
    if (!brancos) return sem_textos;
    const char* const id = lugar.campos[3];
    const char* const fim_do_id = n > 4 ? lugar.campos[4] - 1 : lugar.texto + fim;
    return {lugar.campos, n, Chave(id, static_cast<std::size_t>(fim_do_id - id)), linha.t};
}

Campos LeitorCompacto::reparte(const Linha& linha) {
    const int n = ::reparte(copia(linha), ' ', campos_);
    const long t = linha.usual ? linha.t : n > 0 ? strhex_to_time(campos_[0]) : 0;
    return campos_de(campos_, n, t);
}
