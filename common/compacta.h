// Reading compact lines fast: the head of a usual line, and the lines that cannot matter to a
// trace.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ctime>

#include "common/Tabela.h"
#include "misc/bytes.h"
#include "misc/finais.h"
#include "misc/leitor.h"

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
    // What a head can tell of an event's status: two digits.
    static constexpr int num_status = 100;

    // Shorter lines are not looked at: none that was ever written is.
    static constexpr std::size_t menor = 16;

    // False when the line of `n` bytes is not a usual one.
    bool le(const char* linha, std::size_t n, Cabeca& c) {
        if (n < menor || !separados(linha + 8)) return false;
        const bool curto = linha[12] == ' ';
        if (!curto && (!digito(linha[12]) || linha[13] != ' ')) return false;
        c.status = linha[11] - '0';
        if (!curto) c.status = c.status * 10 + linha[12] - '0';
        c.id = curto ? 13 : 14;
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

// Which lines may be passed over in a trace. To the traced message matter its own lines; those
// after the end of the range, since they stop the file; those with fewer than four fields, which
// hit whatever message is traced; and, while it has something pending, the OK or END of any
// message.
class Crivo {
  public:
    // `id` and `fim` (the last second of the range) must outlive the sieve.
    Crivo(const char* id, time_t fim);

    // What is pending: OK and END lines of other messages must be seen, or need not.
    void define(bool ve_ok, bool ve_end);

    // Bytes of whole lines at the start of [p, p + n) that do not matter; none is longer than
    // `maior_linha`. The last lines may be left to the next time, with more behind them.
    std::size_t sobra(const char* p, std::size_t n, std::size_t maior_linha);

  private:
    bool importa(const char* linha, std::size_t n);

    const char* id_;
    std::size_t tamanho_do_id_;
    std::uint64_t inicio_do_id_ = 0;  // its first bytes, eight at most, and which of eight they are
    std::uint64_t mascara_do_id_ = 0;
    time_t fim_;
    std::uint64_t vistos_ = 0;  // a bit for each status that must be seen
    LeitorDeCabecas cabecas_;
    FinaisDeLinha finais_;
};

// The lines of a compact file, a few dozen at a time and where they were read, with their heads.
class LeitorCompacto {
  public:
    static constexpr std::size_t maior_linha = 2047;  // bytes; what is longer goes on as another

    struct Linha {
        const char* texto;  // in the reader's block, not NUL-terminated
        std::size_t tamanho;
        bool usual;  // `cabeca` holds
        Cabeca cabeca;

        // Of a usual line: what of field 3 stands before a blank, CR or LF, as a key.
        Chave id() const;
    };
    static constexpr std::size_t maior_lote = 80;

    // Starts reading at the current position of `fd`, which stays the caller's.
    void abre(int fd);

    // No lines are at hand: le_lote() must be asked.
    bool vazio() const { return tomadas_ == lidas_; }
    // Reads the next lines, or the next one only; those before must not be used any more. False at
    // the end of the file.
    bool le_lote(bool so_uma);
    const Linha* begin() const { return linhas_; }
    const Linha* end() const { return linhas_ + lidas_; }
    const Linha& operator[](std::size_t i) const { return linhas_[i]; }
    const Linha& toma() { return linhas_[tomadas_++]; }
    void toma_todas() { tomadas_ = lidas_; }

    // Passes over what the sieve lets drop. Only while vazio().
    void passa(Crivo& crivo);

    // The text of any line, NUL-terminated, for the caller to change; holds until the next call.
    char* copia(const Linha& linha);
    // Splits a usual line as explode() does with blanks; answers how many fields. They hold until
    // the next call. `id`, what Linha::id() answered or empty, becomes the key of field 3 if that
    // is known, else one without a text.
    int divide(const Linha& linha, char** campos, Chave& id);

  private:
    LeitorLinhas leitor_;
    LeitorDeCabecas cabecas_;
    Linha linhas_[maior_lote];
    std::size_t lidas_ = 0, tomadas_ = 0;
    char copia_[maior_linha + 1];
};
