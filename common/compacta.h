// The lines of a compact file: writing them, and reading them fast.
//
//     69b2e5ad 1 1 69B2E5AD84A29FEC SMTPCONNINT ana@matriz.example 2969
//     time     | | id               and what else the event tells
//              | status
//              agent
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <initializer_list>
#include <string_view>
#include <vector>

#include "common/auxiliar.h"
#include "misc/bytes.h"
#include "misc/chave.h"
#include "misc/finais.h"
#include "misc/leitor.h"
#include "misc/palavras.h"

// --- Writing. Every line is in the stream when the function returns.
namespace compacta {

constexpr std::size_t maior_hora = 8;  // bytes of field 0 at most

// Field 0, for lines of the time `t`: its low 32 bits in lower-case hexadecimal. It stands in
// `texto`.
std::string_view escreve_hora(char (&texto)[maior_hora], time_t t);

// The line of an event: its time, agent, status and texts, with one blank between; then a line
// feed, unless the last text brings the line's end (`fim` false).
void escreve(std::FILE* f, std::string_view hora, Agent agente, Status status,
             std::initializer_list<std::string_view> campos, bool fim = true);

// The line of an event that was not understood: its time, its agent, and the rest of the log line,
// which brings the line's end.
void copia(std::FILE* f, std::string_view hora, Agent agente, std::string_view resto);

}  // namespace compacta

// --- Reading.

// A line where it was read. A usual one is as the consolidation writes it: eight lower-case
// hexadecimal digits, the agent's digit, one or two digits of status, each followed by one blank,
// and a field more. Any other line must be split and read field by field.
struct Linha {
    const char* texto;  // in the reader's block, not NUL-terminated
    std::size_t tamanho;
    // Of a usual line:
    time_t t;             // field 0, Unix seconds
    std::int32_t status;  // field 2
    std::uint8_t id;      // where field 3 begins
    bool usual;
};

// A line taken apart: what a report's handlers get. Fields are counted from 0.
struct Campos {
    char** texto;  // of all fields, ended by NUL each
    int n;
    Chave id;    // field 3; without text when there is none
    long t = 0;  // field 0, Unix seconds

    char* operator[](int i) const { return texto[i]; }
};

// The fields that somebody else has taken apart; null `texto` has none.
inline Campos campos_de(char** texto, int n, long t = 0) {
    return {texto, n, texto && n > 3 ? Chave(texto[3]) : Chave(), t};
}

// Reads heads one after the other; of lines of the same second the time is converted once.
class LeitorDeCabecas {
  public:
    // A head has room for a status of two digits.
    static constexpr int num_status = 100;

    // Shorter lines do not count as usual: with the ids in use, none is written.
    static constexpr std::size_t menor = 16;

    // Fills in the head of a line whose text is known. False when it is not a usual one. Whether
    // the status has one digit or two is unpredictable, so there are as few branches as possible.
    //
    //     0        8 9 10  12 13 14
    //     69b2e5ad _ 2 _ 4 _  6  9       one digit: a blank at 12, field 3 at 13
    //     69b2e5ad _ 2 _ 1 8  _  6       two: a digit at 12, a blank at 13, field 3 at 14
    bool le(Linha& l) {
        const char* const p = l.texto;
        if (l.tamanho < menor || !separados(p + 8)) return false;
        const bool curto = p[12] == ' ';
        const bool longo = digito(p[12]) & (p[13] == ' ');
        if (!(curto | longo)) return false;
        const int dezenas = p[11] - '0';
        l.status = curto ? dezenas : dezenas * 10 + (p[12] - '0');
        l.id = static_cast<std::uint8_t>(14 - curto);
        if (oito_bytes(p) != digitos_ && !converte(p)) return false;
        l.t = t_;
        return true;
    }

  private:
    static bool digito(char c) { return static_cast<unsigned char>(c - '0') <= 9; }

    // Whether four bytes are a blank, a digit, a blank, a digit: all four in one look.
    //
    //     bytes                 ' '  '1'  ' '  '5'     ' '  ':'
    //                           20   31   20   35      20   3a
    //     v: xor " 0 0"         00   01   00   05      00   0a    a digit differs by less than ten
    //     v + 00 06 00 06       00   07   00   0b      00   10    ten shows in the high four bits
    //     either, & FF F0 ...   00   00   00   00      00   10    all 0: as it should be
    static bool separados(const char* p) {
        std::uint32_t v;
        std::memcpy(&v, p, sizeof v);
        v ^= std::bit_cast<std::uint32_t>(std::array{' ', '0', ' ', '0'});
        const auto seis = std::bit_cast<std::uint32_t>(std::array{'\0', '\6', '\0', '\6'});
        const auto altos = std::bit_cast<std::uint32_t>(std::array{'\xFF', '\xF0', '\xFF', '\xF0'});
        return ((v | (v + seis)) & altos) == 0;
    }

    bool converte(const char* digitos);

    std::uint64_t digitos_ = 0;  // the last field 0 converted, and its time
    time_t t_ = 0;
};

// A text that fields are compared with: eight of its bytes first, all at once, and the rest only
// where these agree. They are its last eight within `alcance`, since the ids of one hour begin
// alike. Of a shorter text, all bytes are the last of the eight, and the mask leaves out the
// others:
//
//     ..._69AF5F9E3779B980_...      a field where a line was read; the text has 16 bytes
//         |desvio 8 ^^^^^^^^
//     ...:_cia_...                  the text is "cia": desvio -5, the mask holds three bytes
//     ^^^^^^^^
class Agulha {
  public:
    // Bytes from the start of a field that are read without knowing where its line ends.
    static constexpr std::size_t alcance = 40;

    // `texto` must outlive the needle.
    explicit Agulha(const char* texto);

    // Whether the field that begins at `campo` is the text. Its line ends before `fim`; the eight
    // bytes before the field and those of its reach can be read, whatever they are.
    bool igual(const char* campo, const char* fim) const {
        return ((oito_bytes(campo + desvio_) ^ oito_) & mascara_) == 0 && toda(campo, fim);
    }

  private:
    bool toda(const char* campo, const char* fim) const;

    const char* texto_;
    std::size_t tamanho_;
    std::ptrdiff_t desvio_;   // from the field to the eight bytes; negative for a shorter text
    std::uint64_t oito_ = 0;  // the text's bytes among them, and which they are
    std::uint64_t mascara_ = 0;
};

// Decides which lines a trace may pass over. What matters to the traced message: its own lines;
// those after the end of the range, which stop the file; those with fewer than four fields, which
// apply to whatever message is traced; the OK of any message that names what is pending; and, as
// long as that would make it fail, the END of any message.
class Crivo {
  public:
    // `id` must outlive the sieve; `fim` is the last second of the range.
    // cppcheck-suppress uninitMemberVar ; of finais_ only what acha() has just written is read
    Crivo(const char* id, time_t fim) : id_(id), fim_(fim) {}

    // Forgets what was pending. `ve_end` tells whether the END of other messages must be seen.
    void define(bool ve_end);
    // Something is pending: the OK that names `texto` must be seen, until the next define(). The
    // text must stay until then.
    void espera(const char* texto) { pendentes_.emplace_back(texto); }

    // Bytes of whole lines at the start of [p, p + n) that do not matter; none is longer than
    // `maior_linha`. The last lines may be left to the next call, with more behind them.
    // LeitorLinhas::folga bytes behind all can be read.
    std::size_t sobra(const char* p, std::size_t n, std::size_t maior_linha);

  private:
    bool importa(Linha& l, LeitorDeCabecas& cabecas) const;
    bool nomeia(const char* id, const char* fim) const;

    Agulha id_;
    time_t fim_;
    bool ve_end_ = false;
    std::vector<Agulha> pendentes_;
    FinaisDeLinha finais_;
};

// Lines read together, left where they were read: usual ones, or one that is not.
struct Lote {
    static constexpr std::size_t maior = 80;

    std::size_t n;
    bool usuais;
    // Of usual ones, the earliest and the latest time.
    time_t primeira, ultima;
    // Those whose status matters to the report: how many, and which.
    std::size_t servem;
    std::uint8_t quais_servem[maior];
    Linha linhas[maior];

    const Linha& que_serve(std::size_t i) const { return linhas[quais_servem[i]]; }
    const Linha* begin() const { return linhas; }
    const Linha* end() const { return linhas + n; }
};

// The lines of a compact file, a few dozen at a time.
class LeitorCompacto {
  public:
    static constexpr std::size_t maior_linha = 2047;  // bytes; what is longer goes on as another
    using Statuses = bool[LeitorDeCabecas::num_status];

    // Starts reading at the current position of `fd`, which stays the caller's.
    void comeca(int fd) { leitor_.comeca(fd); }

    // The next lines, at most `maior`; null at the end of the file. They hold until the next call.
    // `serve` tells which statuses matter.
    const Lote* le_lote(std::size_t maior, const Statuses& serve);
    // Takes back a line of that batch, and those behind it.
    void devolve(const Linha& linha) { leitor_.devolve({linha.texto, linha.tamanho}); }
    // Passes over what the sieve drops of the lines that come next.
    void passa(Crivo& crivo);

    // Room for a line that is taken apart before its turn comes.
    struct Lugar {
        static constexpr int maior = 16;  // fields
        char* campos[maior];
        char texto[Cortes::maior];
    };
    // The fields of a usual line, in `lugar`: as explode() answers them with blanks. Without texts
    // when the line is long or has unusual blanks; then reparte() must be asked.
    static Campos separa(const Linha& linha, Lugar& lugar);
    // The fields of any line. They hold until the next call.
    Campos reparte(const Linha& linha);

    // Field 0 of a line that is not usual.
    long hora(const Linha& linha);

  private:
    char* copia(const Linha& linha);

    LeitorLinhas leitor_;
    LeitorDeCabecas cabecas_;
    Lote lote_;
    char copia_[maior_linha + 1];
    char* campos_[maior_linha + 1];
};
