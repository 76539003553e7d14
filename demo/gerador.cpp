// Days of traffic: when messages arrive, and their lines put into time order.
#include "demo/gerador.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <vector>

#include "demo/trafego.h"

namespace gerador {

namespace {

// How busy each local hour is.
constexpr std::array<unsigned, 24> movimento = {3,  2,  2,  2,  2,  3,  6,  18, 60, 90, 92, 80,
                                                45, 62, 88, 90, 80, 60, 30, 16, 12, 10, 7,  5};

std::time_t meia_noite(struct tm dia, unsigned depois) {
    dia.tm_mday += static_cast<int>(depois);
    dia.tm_hour = dia.tm_min = dia.tm_sec = 0;
    dia.tm_isdst = -1;
    return std::mktime(&dia);
}

// "YYYY-MM-DD", a day that exists and whose year has four digits.
struct tm le_dia(const std::string& texto) {
    struct tm dia = {};
    int lidos = 0;
    if (std::sscanf(texto.c_str(), "%4d-%2d-%2d%n", &dia.tm_year, &dia.tm_mon, &dia.tm_mday,
                    &lidos) != 3 ||
        lidos != 10 || texto.size() != 10)
        throw std::invalid_argument("not a day as YYYY-MM-DD: " + texto);
    dia.tm_year -= 1900;
    dia.tm_mon -= 1;
    const struct tm pedido = dia;
    const std::time_t t = meia_noite(dia, 0);
    localtime_r(&t, &dia);
    if (dia.tm_year != pedido.tm_year || dia.tm_mon != pedido.tm_mon ||
        dia.tm_mday != pedido.tm_mday)
        throw std::invalid_argument("no such day: " + texto);
    return dia;
}

class Gerador {
  public:
    explicit Gerador(const Parametros& p)
        : p_(p), sorte_(p.semente), trafego_(p, sorte_), saida_(p.diretorio, p.rotacao) {}

    Resumo gera() {
        const struct tm primeiro = le_dia(p_.primeiro_dia);
        for (unsigned d = 0; d < p_.dias; ++d)
            dia(meia_noite(primeiro, d), meia_noite(primeiro, d + 1));
        saida_.conclui();
        return {std::uint64_t{p_.dias} * p_.mensagens, saida_.linhas(), saida_.bytes(),
                saida_.arquivos()};
    }

  private:
    void dia(std::time_t inicio, std::time_t fim) {
        saida_.novo_dia();
        const auto chegadas = sorteia_chegadas(static_cast<std::size_t>(fim - inicio));
        for (std::time_t t = inicio; t < fim; ++t) {
            for (unsigned n = chegadas[static_cast<std::size_t>(t - inicio)]; n > 0; --n)
                for (const auto& e : trafego_.mensagem(t, fim))
                    (balde(e.quando) += e.texto) += '\n';
            emite(t);
        }
    }

    // How many messages arrive in each second of the day: most by the hour's movement, the rest in
    // bursts of two minutes, as newsletters do.
    std::vector<unsigned> sorteia_chegadas(std::size_t segundos) {
        std::array<unsigned, 24> ate_hora;
        unsigned soma = 0;
        for (std::size_t h = 0; h < 24; ++h) ate_hora[h] = soma += movimento[h];
        const auto sorteia_segundo = [&] {
            const auto h = std::upper_bound(ate_hora.begin(), ate_hora.end(), sorte_.ate(soma));
            return static_cast<std::size_t>(h - ate_hora.begin()) * 3600 + sorte_.ate(3600);
        };
        std::array<std::size_t, 12> rajadas;
        for (auto& r : rajadas) r = sorteia_segundo();

        std::vector<unsigned> chegadas(segundos);
        for (unsigned n = 0; n < p_.mensagens; ++n) {
            std::size_t s = 0;
            if (sorte_.acontece(0.12))
                s = rajadas[sorte_.ate(rajadas.size())] + sorte_.ate(120);
            else
                s = sorteia_segundo();
            ++chegadas[std::min(s, segundos - 1)];
        }
        return chegadas;
    }

    // The lines that wait for second `t`. A message's last event comes less than a round after it.
    std::string& balde(std::time_t t) { return anel_[static_cast<std::size_t>(t) % anel_.size()]; }

    void emite(std::time_t t) {
        // Taken out whole: a day's seconds, each keeping its room, would hold the day.
        const std::string linhas = std::move(balde(t));
        balde(t) = std::string();
        if (linhas.empty()) return;
        char carimbo[32];
        ctime_r(&t, carimbo);
        const std::string_view hora(carimbo, 24);
        for (std::size_t i = 0; i < linhas.size();) {
            const std::size_t fim = linhas.find('\n', i);
            saida_.linha(t, hora, std::string_view(linhas).substr(i, fim - i),
                         sorte_.acontece(p_.crlf) ? "\r\n" : "\n");
            i = fim + 1;
            if (sorte_.acontece(p_.estranhas)) estranha(hora);
            if (sorte_.acontece(p_.partem_dia)) parte_dia(hora);
        }
    }

    // A line of this second that tells of no message: readers pass it on or report it, no more.
    void estranha(std::string_view hora) {
        static constexpr std::array textos = {
            "10 POPSRV READ usr m vendas@metalurgica.example 3 mensagens",
            "11 POPSRV LOGIN usr vendas@metalurgica.example aceito",
            "12 WEBADM LOGIN usr administrador aceito",
            "13 MAILQ LIMPEZA fila sem pend\xEAncias",
            "14 MAILSMTP ESTADO 12 conexoes abertas",
            "15 ANTIVIRUS LIMPO base de assinaturas renovada",
            "16 MAILQ END",
            "17",
        };
        std::string linha(hora);
        linha += ": ";
        const unsigned qual = sorte_.ate(textos.size() + 1);
        if (qual < textos.size())
            linha += textos[qual];
        else
            linha += "18 WEBADM PAGINA " + std::string(300 + sorte_.ate(1600), 'x');
        saida_.crua(linha += sorte_.acontece(p_.crlf) ? "\r\n" : "\n");
    }

    // Nothing at all, or a line that does not fit a reader's 2046 bytes: what is left of it begins
    // with no day.
    void parte_dia(std::string_view hora) {
        if (sorte_.acontece(0.5)) return saida_.crua("\n");
        saida_.crua(std::string(hora) + ": 19 WEBADM PAGINA " + std::string(2400, 'y') + '\n');
    }

    const Parametros& p_;
    Sorte sorte_;
    Trafego trafego_;
    SaidaLog saida_;
    std::vector<std::string> anel_ = std::vector<std::string>(Trafego::prazo + 1);
};

}  // namespace

Resumo gera(const Parametros& parametros) {
    const std::string& inicio = parametros.inicio_dos_ids;
    if (inicio.size() > 8 || inicio.find(' ') != std::string::npos)
        throw std::invalid_argument("not the beginning of an id: " + inicio);
    if (parametros.usuarios == 0) throw std::invalid_argument("no users");
    if ((parametros.nomes_externos == 0) != (parametros.dominios_externos == 0))
        throw std::invalid_argument("outside names and domains only together");
    return Gerador(parametros).gera();
}

}  // namespace gerador
