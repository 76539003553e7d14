// The day files: their names and the formats of their lines, shared by the writer and the readers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>

#include "common/Usuario.h"
#include "misc/linha.h"

namespace diario {

// Name prefixes of the two files of a day.
constexpr char compacto[] = "compact_mail_";
constexpr char estatistica[] = "mail_stat_";

// Room for any path of a day file: a data directory of 128 bytes, a prefix of 80, the numbers.
constexpr std::size_t maior_caminho = 256;

// Writes "<dir>/rels_MM-YY", the directory of a month (1 to 12) of a year of the century.
void nome_do_mes(char (&path)[maior_caminho], const char* dir, int mes, int ano);

// Writes "<dir>/rels_MM-YY/<prefix>DD.txt", a file of the day `dia` of that month.
void nome_do_dia(char (&path)[maior_caminho], const char* dir, int mes, int ano, const char* prefix,
                 int dia);

// Day totals, in the order of the first line of a statistics file. The counters wrap at 32 bits and
// are written signed, so 2^31 bytes and more show as negative numbers.
struct Totais {
    std::uint32_t spam, virus, error, att_blocked, msgs_int, bytes_int, msgs_ext, bytes_ext;
};

// First line: Unix seconds of the first and of the last counted period's start and last second,
// then the totals.
void escreve_totais(std::FILE* f, time_t inicio, time_t fim, const Totais& totais);

// "[<Unix seconds>]": the start of a period.
void escreve_periodo(std::FILE* f, time_t inicio);

// A user's counters of one period: name, sent, bytes_sent, recv, bytes_recv, virus, spam, error,
// att_blocked.
void escreve_usuario(std::FILE* f, const char* nome, const usuStats& s);

}  // namespace diario
