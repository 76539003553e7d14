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

// The head of a line as the consolidation writes it: eight lower-case hexadecimal digits, the
// agent's digit, one or two digits of status, each followed by one blank. Such a line has at least
// four fields. Any other line must be split and read field by field.
struct Cabeca {
    time_t t;        // field 0, Unix seconds
    int status;      // field 2
    std::size_t id;  // where field 3 begins
};

// Reads heads one after the other; of lines of the same second the time is converted once.
class LeitorDeCabecas {
  public:
    // A head has room for a status of two digits.
    static constexpr int num_status = 100;

    // Shorter lines do not count as usual: with the ids in use, none is written.
    static constexpr std::size_t menor = 16;

    // False when the line of `n` bytes is not a usual one. Whether the status has one digit or two
    // is unpredictable, so there are as few branches as possible.
    bool le(const char* linha, std::size_t n, Cabeca& c) {
        if (n < menor || !separados(linha + 8)) return false;
        const bool curto = linha[12] == ' ';
        const bool longo = digito(linha[12]) & (linha[13] == ' ');
        if (!(curto | longo)) return false;
        const int dezenas = linha[11] - '0';
        c.status = curto ? dezenas : dezenas * 10 + (linha[12] - '0');
        c.id = 14u - curto;
        if (oito_bytes(linha) != digitos_ && !converte(linha)) return false;
        c.t = t_;
        return true;
    }

  private:
    static bool digito(char c) { return static_cast<unsigned char>(c - '0') <= 9; }

    // Whether four bytes are a blank, a digit, a blank, a digit: all four in one look. The digits
    // differ from '0' in the low four bits only, and by less than ten.
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
// alike.
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
    bool importa(const char* linha, std::size_t n, LeitorDeCabecas& cabecas) const;
    bool nomeia(const char* id, const char* fim) const;

    Agulha id_;
    time_t fim_;
    bool ve_end_ = false;
    std::vector<Agulha> pendentes_;
    FinaisDeLinha finais_;
};

// The lines of a compact file, a few dozen at a time, left where they were read, with their heads.
class LeitorCompacto {
  public:
    static constexpr std::size_t maior_linha = 2047;  // bytes; what is longer goes on as another

    struct Linha {
        const char* texto;  // in the reader's block, not NUL-terminated
        std::size_t tamanho;
        bool usual;  // `cabeca` holds
        Cabeca cabeca;
    };
    static constexpr std::size_t maior_lote = 80;

    // A usual line, taken apart before its turn comes.
    struct Partes {
        const Linha* linha;
        Chave id;  // field 3; no text when the line could not be taken apart beforehand
        int campos;
        std::uint8_t inicios[Cortes::maior + 2];  // of the fields in `texto`, and its end
        char texto[Cortes::maior];
    };

    // Starts reading at the current position of `fd`, which stays the caller's.
    void abre(int fd);

    // No lines are at hand: le_lote() must be called.
    bool vazio() const { return tomadas_ == lidas_; }
    // Reads the next lines: usual ones, or one that is not; with `so_uma` one only. The lines
    // before become invalid. `serve` tells which statuses matter. False at the end of the file.
    bool le_lote(bool so_uma, const bool (&serve)[LeitorDeCabecas::num_status]);
    const Linha& toma() { return linhas_[tomadas_++]; }
    void toma_todas() { tomadas_ = lidas_; }

    // Of the lines read last: whether they are usual, and if so the earliest and the latest time
    // among them.
    bool usuais() const { return usuais_; }
    time_t primeira() const { return primeira_; }
    time_t ultima() const { return ultima_; }
    // How many of them, being usual, have a status that matters, and which.
    std::size_t servem() const { return servem_; }
    const Linha& que_serve(std::size_t i) const { return linhas_[quais_servem_[i]]; }

    // Passes over what the sieve drops. Only while vazio().
    void passa(Crivo& crivo);

    // The text of any line, NUL-terminated, for the caller to change; holds until the next call.
    char* copia(const Linha& linha);
    // Takes a usual line apart. The line must stay as it is until campos() was called.
    static void separa(const Linha& linha, Partes& p);
    // The fields of such a line, as explode() answers them with blanks; returns how many. They and
    // `p.id`, which then has a text, hold until the next call or change of `p`.
    int campos(Partes& p, char** campos);

  private:
    LeitorLinhas leitor_;
    LeitorDeCabecas cabecas_;
    Linha linhas_[maior_lote];
    std::size_t lidas_ = 0, tomadas_ = 0;
    bool usuais_ = false;
    time_t primeira_ = 0, ultima_ = 0;
    std::uint8_t quais_servem_[maior_lote];
    std::size_t servem_ = 0;
    char copia_[maior_linha + 1];
};
