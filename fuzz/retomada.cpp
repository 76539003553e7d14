// The messages of a last-consolidation file: against a naive reading of the same conversions, and
// written and read again.
#include <cctype>
#include <climits>
#include <cstring>

#include "common/LogMailFileParser.h"
#include "fuzz/apoio.h"

namespace {

struct Mensagem {
    std::string id;
    std::uint32_t tamanho;
    bool virus, spam, bloqueado, interno;
    int inicio, fim;

    bool operator==(const Mensagem&) const = default;
};

// What scanf does with "%49s %d %c %c %c %c %d %d %511s" over a text, record after record.
class Leitura {
  public:
    explicit Leitura(const std::string& texto) : texto_(texto) {}

    std::vector<Mensagem> todas() {
        std::vector<Mensagem> lidas;
        while (!fim_) {
            registro();
            lidas.push_back({atual_.id, atual_.tamanho, letras_[0] == 'S', letras_[1] == 'S',
                             letras_[2] == 'S', letras_[3] == 'S', atual_.inicio, atual_.fim});
        }
        return lidas;
    }

  private:
    // The next byte, or -1: then the end of the file has been noticed.
    int olha() {
        if (p_ < texto_.size()) return static_cast<unsigned char>(texto_[p_]);
        fim_ = true;
        return -1;
    }

    void brancos() {
        while (olha() != -1 && std::isspace(olha())) ++p_;
    }

    bool palavra(std::size_t maior, std::string& destino) {
        brancos();
        std::string lida;
        while (lida.size() < maior && olha() != -1 && !std::isspace(olha())) lida += texto_[p_++];
        if (lida.empty()) return false;
        destino = lida.c_str();
        return true;
    }

    bool numero(int& destino) {
        brancos();
        std::string lido;
        if (olha() == '-' || olha() == '+') lido += texto_[p_++];
        while (olha() != -1 && std::isdigit(olha())) lido += texto_[p_++];
        if (lido.find_first_of("0123456789") == std::string::npos) return false;
        destino = static_cast<int>(std::strtol(lido.c_str(), nullptr, 10));
        return true;
    }

    bool letra(char& destino) {
        brancos();
        if (olha() == -1) return false;
        destino = texto_[p_++];
        return true;
    }

    void registro() {
        int tamanho = static_cast<int>(atual_.tamanho);
        std::string remetente;
        if (!palavra(49, atual_.id) || !numero(tamanho)) return;
        atual_.tamanho = static_cast<std::uint32_t>(tamanho);
        for (char& c : letras_)
            if (!letra(c)) return;
        if (numero(atual_.inicio) && numero(atual_.fim)) palavra(511, remetente);
    }

    const std::string& texto_;
    std::size_t p_ = 0;
    bool fim_ = false;
    Mensagem atual_{"", 0, false, false, false, false, 0, 1};
    char letras_[4] = {'N', 'N', 'N', 'N'};
};

struct Parser : LogMailFileParser {
    // The messages as they stand, oldest first, their texts cut as records keep them.
    std::vector<Mensagem> mensagens() const {
        std::vector<Mensagem> m;
        for (const Msg* i = Lista_msg.last(); i; i = i->prev)
            m.push_back({i->id, i->size, i->virus, i->spam, i->att_blocked, i->int_user,
                         static_cast<int>(i->start_time), static_cast<int>(i->end_time)});
        return m;
    }
    ~Parser() {
        relogio_do_sistema = [](time_t*) { return time_t{0}; };
        consolidate(nullptr);
    }
};

void le(Parser& p, const std::string& path) {
    const Stream f = abre_leitura(path.c_str());
    exige(p.readExtraInfo(f.get()), "a stream is read");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* dados, std::size_t n) {
    static const Arvore arvore;
    const std::string texto(reinterpret_cast<const char*>(dados), n);
    Parser p;
    le(p, arvore.grava("registros", texto));
    std::vector<Mensagem> quer = Leitura(texto).todas();
    for (Mensagem& m : quer) m.id.resize(std::min(m.id.size(), std::size_t{23}));
    exige(p.mensagens() == quer, "the messages read");

    // Written, they come back in the other order and without an end: none had an attempt.
    for (Mensagem& m : quer) {
        if (m.id.empty()) return 0;
        m.fim = 0;
    }
    const std::string path = arvore.path("last");
    exige(p.createLastConsolidFile(path.c_str()), "the file is written");
    Parser outro;
    outro.getLastConsolid(path.c_str());
    exige(outro.mensagens() == std::vector<Mensagem>(quer.rbegin(), quer.rend()),
          "the messages read again");
    return 0;
}
