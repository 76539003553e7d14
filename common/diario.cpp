// The day files: names and line formats.
#include "common/diario.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "misc/escrita.h"

namespace diario {

namespace {

constexpr std::uint64_t dia_em_segundos = 86400;

void campo(Escrita& linha, std::uint32_t v) {
    linha.letra(' ').numero(static_cast<std::int32_t>(v));
}

// Reads the decimal numbers that stand in `texto`, up to n; answers how many there were.
template <std::size_t n>
std::size_t le_numeros(const char* texto, std::uint32_t (&numeros)[n]) {
    for (std::size_t i = 0; i < n; ++i) {
        char* fim;
        const long long v = std::strtoll(texto, &fim, 10);
        if (fim == texto) return i;
        numeros[i] = static_cast<std::uint32_t>(v);
        texto = fim;
    }
    return n;
}

}  // namespace

void nome_do_mes(char (&path)[maior_caminho], const char* dir, int mes, int ano) {
    std::snprintf(path, sizeof path, "%s/rels_%02d-%02d", dir, mes, ano);
}

void nome_do_dia(char (&path)[maior_caminho], const char* dir, int mes, int ano, const char* prefix,
                 int dia) {
    std::snprintf(path, sizeof path, "%s/rels_%02d-%02d/%s%02d.txt", dir, mes, ano, prefix, dia);
}

void escreve_totais(std::FILE* f, time_t inicio, time_t fim, const Totais& t) {
    Escrita linha(f, 10 * (Escrita::maior_numero + 1));
    linha.numero(inicio).letra(' ').numero(fim);
    for (std::uint32_t v : {t.spam, t.virus, t.error, t.att_blocked, t.msgs_int, t.bytes_int,
                            t.msgs_ext, t.bytes_ext})
        campo(linha, v);
    linha.letra('\n').termina();
}

void escreve_periodo(std::FILE* f, time_t inicio) {
    Escrita(f, Escrita::maior_numero + 3)
        .letra('[')
        .numero(inicio)
        .letra(']')
        .letra('\n')
        .termina();
}

void escreve_usuario(std::FILE* f, const char* nome, std::size_t tamanho, const usuStats& s) {
    Escrita linha(f, tamanho + 8 * (Escrita::maior_numero + 1) + 1);
    linha.texto({nome, tamanho});
    for (std::uint32_t v :
         {s.sent, s.bytes_sent, s.recv, s.bytes_recv, s.virus, s.spam, s.error, s.att_blocked})
        campo(linha, v);
    linha.letra('\n').termina();
}

bool le_totais(const char* linha, Totais& t) {
    std::uint32_t v[10];
    if (le_numeros(linha, v) != 10) return false;
    t = {v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9]};
    return true;
}

void mostra(const Totais& t, MsgsData& linha) {
    linha.spam = t.spam;
    linha.virus = t.virus;
    linha.error = t.error;
    linha.att_blocked = t.att_blocked;
    linha.msgs_int = t.msgs_int;
    linha.bytes_int = t.bytes_int;
    linha.msgs_ext = t.msgs_ext;
    linha.bytes_ext = t.bytes_ext;
}

bool e_periodo(const char* linha) {
    return linha[0] == '[';
}

time_t le_periodo(const char* linha) {
    return static_cast<time_t>(std::strtoll(linha + 1, nullptr, 10));
}

const char* le_nome(const char* linha, std::string& nome) {
    static constexpr char brancos[] = " \t\n\v\f\r";
    const char* inicio = linha + std::strspn(linha, brancos);
    const char* fim = inicio + std::strcspn(inicio, brancos);
    nome.assign(inicio, fim);
    return fim;
}

usuStats le_contadores(const char* numeros) {
    std::uint32_t v[8] = {};
    le_numeros(numeros, v);
    return {v[0], v[2], v[1], v[3], v[4], v[5], v[6], v[7]};
}

void soma(const usuStats& s, MsgsData& linha) {
    linha.msgs_ext += s.sent;
    linha.bytes_ext += s.bytes_sent;
    linha.msgs_int += s.recv;
    linha.bytes_int += s.bytes_recv;
    linha.virus += s.virus;
    linha.error += s.spam;
    linha.spam += s.error;
    linha.att_blocked += s.att_blocked;
}

void nome_para_leitor(char (&path)[maior_caminho], const char* dir, const char* prefix, time_t t,
                      int& mes, int& ano) {
    struct tm tm = {};
    gmtime_r(&t, &tm);
    mes = tm.tm_mon + 1;
    ano = tm.tm_year - 100;
    nome_do_dia(path, dir, mes, ano, prefix, tm.tm_mday);
}

Dias::Dias(const char* dir, const char* prefix, time_t start, time_t end)
    : dia_(start), dir_(dir), prefix_(prefix) {
    constexpr std::int64_t ano_2000 = 946684800, ano_2100 = 4102444800;
    const std::int64_t fim = std::min<std::int64_t>(end, ano_2100 - 1);
    if (start >= end || start > fim) return;
    // Steps before 2000 are passed over, not walked: the range may begin at the least number there
    // is. Unsigned for the same reason: the difference of its ends may not fit a signed one.
    std::uint64_t passos = 0;
    if (start < ano_2000) {
        const std::uint64_t antes = std::uint64_t{ano_2000} - static_cast<std::uint64_t>(start);
        passos = (antes + dia_em_segundos - 1) / dia_em_segundos;
    }
    const std::uint64_t ate = static_cast<std::uint64_t>(fim) - static_cast<std::uint64_t>(start);
    if (passos * dia_em_segundos > ate) return;
    dia_ = static_cast<time_t>(static_cast<std::uint64_t>(start) + passos * dia_em_segundos);
    restam_ = ate / dia_em_segundos - passos + 1;
}

// The array has (end - start) / 86400 + 2 entries, as getFiles asks of its caller. Of an inverted
// range the division drops the fraction towards 0: two entries up to a day, one up to two days.
Dias::Dias(const InputFiles* files, time_t start, time_t end) : files_(files), dia_(start) {
    const std::uint64_t largura =
        static_cast<std::uint64_t>(end) - static_cast<std::uint64_t>(start);
    const std::uint64_t avesso =
        static_cast<std::uint64_t>(start) - static_cast<std::uint64_t>(end);
    if (start <= end)
        restam_ = largura / dia_em_segundos + 2;
    else if (avesso < 2 * dia_em_segundos)
        restam_ = 2 - avesso / dia_em_segundos;
}

bool Dias::proximo() {
    if (restam_ == 0) return false;
    --restam_;
    if (!parado_) {
        dia_ = static_cast<time_t>(static_cast<std::uint64_t>(dia_) + dia_em_segundos);
        if (files_) ++files_;
    }
    parado_ = false;
    if (files_) return files_->file != nullptr;
    nome_para_leitor(path_, dir_, prefix_, dia_, mes_, ano_);
    return true;
}

Stream Dias::abre() {
    if (files_) return abre_regular(files_->file);
    if (mes_ == mes_ausente_ && ano_ == ano_ausente_) return nullptr;
    Stream f = abre_regular(path_);
    if (!f && errno == ENOENT) {
        char mes[maior_caminho];
        nome_do_mes(mes, dir_, mes_, ano_);
        if (access(mes, F_OK) != 0) {
            mes_ausente_ = mes_;
            ano_ausente_ = ano_;
        }
    }
    return f;
}

}  // namespace diario
