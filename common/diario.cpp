// The day files: names and line formats.
#include "common/diario.h"

#include <cstdio>
#include <initializer_list>

namespace diario {

namespace {

void campo(Linha& linha, std::uint32_t v) {
    linha.letra(' ').numero(static_cast<std::int32_t>(v));
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
    Linha linha(f);
    linha.numero(inicio).letra(' ').numero(fim);
    for (std::uint32_t v : {t.spam, t.virus, t.error, t.att_blocked, t.msgs_int, t.bytes_int,
                            t.msgs_ext, t.bytes_ext})
        campo(linha, v);
    linha.letra('\n').termina();
}

void escreve_periodo(std::FILE* f, time_t inicio) {
    Linha(f).letra('[').numero(inicio).texto("]\n").termina();
}

void escreve_usuario(std::FILE* f, const char* nome, const usuStats& s) {
    Linha linha(f);
    linha.texto(nome);
    for (std::uint32_t v :
         {s.sent, s.bytes_sent, s.recv, s.bytes_recv, s.virus, s.spam, s.error, s.att_blocked})
        campo(linha, v);
    linha.letra('\n').termina();
}

}  // namespace diario
