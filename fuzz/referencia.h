// The rules of log lines told a second time, one character and one event after the other: what the
// fast code is compared with. Written from docs/formats.md.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>
#include <vector>

namespace referencia {

// Agents and events as they are on disk.
enum : int { MAILQ = 1, MAILSMTP, POPSRV, ANTIVIRUS, SPAMCATCHER };
enum : int {
    SUBMIT = 1,
    OK,
    READ,
    END,
    CONNECT,
    DELIVER = 7,
    SENDER,
    DEST,
    FINAL,
    DATA,
    HELO,
    SIZE,
    DOMINIO,
    VIRUS,
    ARQUIVO,
    SPAM = 18,
    COPY,
    TAGGED,
    QUARANTINE,
    DISCARD,
};

using Palavras = std::vector<std::string>;

// The words of a line as getTokens stores them, at most `max`.
Palavras palavras(const std::string& texto, std::size_t max);

// The pieces of explode; none where it answers null.
Palavras pedacos(std::string texto, char sep);

// A file's lines, each with its line feed; pieces of `limite` bytes of longer ones.
Palavras linhas(const std::string& bytes, std::size_t limite);

// Unix seconds of a log line's stamp.
time_t carimbo(const std::string& linha);

// A log line taken apart.
struct Evento {
    time_t t;
    int agente, status;    // as on disk
    Palavras p;            // the words
    std::string compacta;  // its compact line; "" when there is none
    bool aceito;           // a handler takes it: it has all the words that it needs

    // `linha` as read, with its line end.
    explicit Evento(const std::string& linha);

  private:
    void escreve(const std::string& bruta);
    bool registra(int agente, int status, std::initializer_list<std::size_t> palavras,
                  const std::string& fim = "\n");
};

// 1 local, 2 outside, 0 unknown.
int tipo_de_usuario(const std::string& palavra);

// The low 32 bits of a decimal number.
std::int32_t decimal(const std::string& texto);

// The first day of a first run: what its events make of the tables, and the statistics file.
class Dia {
  public:
    explicit Dia(time_t meia_noite) : inicio_(meia_noite) {}

    void conta(const Evento& e);
    std::string estatistica() const;

  private:
    struct Contadores {
        std::uint32_t sent, bytes_sent, recv, bytes_recv, virus, spam, error, att_blocked;
    };
    struct Usuario {
        std::string nome;
        Contadores periodos[24] = {};
    };
    struct Erro {
        int tipo;
        std::string texto;
    };
    struct Mensagem {
        std::string id;
        int remetente = -1;  // index of a local user
        std::uint32_t tamanho = 0, tentativas = 0;
        bool interna = false, enviada = false, spam = false, virus = false, erro = false,
             fatal = false;
        time_t fim = 0;
        std::vector<Erro> erros;
    };

    int usuario(const std::string& nome);
    Mensagem* acha(const std::string& id);
    Mensagem& acha_ou_nova(const std::string& id);
    unsigned periodo(time_t t);
    void submetida(const Evento& e);
    void aceita(const Evento& e);
    void falha(const Evento& e);
    void conta_envio(const Mensagem& m, time_t t, std::uint32_t Contadores::*tambem);
    static void resolve(Mensagem& m, const std::string* dominio);

    time_t inicio_;
    std::vector<Mensagem> mensagens_;  // oldest first
    std::vector<Usuario> usuarios_;
    unsigned primeiro_ = 0, ultimo_ = 23;
    bool contou_ = false;
};

}  // namespace referencia
