// Addresses made of a number. Domains and networks are those reserved for examples.
#include "demo/nomes.h"

namespace gerador {

const std::array<const char*, 3> dominios_locais = {"metalurgica.example", "matriz.metal.example",
                                                    "filial-sul.example"};

namespace {

constexpr std::array papeis = {"nfe",     "boletim", "cobranca", "vendas",
                               "sistema", "suporte", "rh",       "compras"};

constexpr std::array nomes = {
    "ana",      "beatriz", "carlos", "daniela",   "eduardo", "fernanda", "gustavo", "helena",
    "igor",     "jo\xE3o", "karina", "leandro",   "marcia",  "nelson",   "olga",    "paulo",
    "quiteria", "rafael",  "sandra", "thiago",    "ursula",  "vera",     "wagner",  "yara",
    "jos\xE9",  "renato",  "simone", "m\xF4nica", "marcelo", "lucas",    "patricia"};

constexpr std::array sobrenomes = {
    "silva",    "souza",   "oliveira", "santos",  "pereira",   "lima",    "costa",      "alves",
    "ribeiro",  "gomes",   "martins",  "rocha",   "falc\xE3o", "barbosa", "dias",       "nunes",
    "teixeira", "moreira", "cardoso",  "le\xE3o", "vieira",    "moraes",  "cavalcante", "freitas",
    "barros",   "pinto",   "moura",    "araujo",  "tavares"};

constexpr std::array provedores = {"correio-livre.example", "caixa-aberta.test",
                                   "postal-geral.example", "recado.invalid"};

constexpr std::array ramos = {"aurora", "textil", "porto",   "cafe",      "ceramica",
                              "moveis", "graos",  "oficina", "papelaria", "vidros"};

constexpr std::array lugares = {"norte", "sul", "leste", "serra", "litoral", "vale", "campo"};

// A person's mailbox name; the number comes in when the names are used up.
std::string pessoa(unsigned n) {
    constexpr unsigned pares = nomes.size() * sobrenomes.size();
    std::string caixa = nomes[n % nomes.size()];
    caixa += '.';
    caixa += sobrenomes[n / nomes.size() % sobrenomes.size()];
    if (n >= pares) caixa += std::to_string(n / pares + 1);
    return caixa;
}

}  // namespace

std::string usuario_local(unsigned n) {
    std::string endereco = n < papeis.size() ? papeis[n] : pessoa(n);
    if (n % 50 == 49) return endereco;
    endereco += '@';
    return endereco += dominios_locais[n % dominios_locais.size()];
}

std::string usuario_remoto(unsigned n) {
    std::string endereco = pessoa(n) + '@';
    if (n % 2 == 0) return endereco += provedores[n / 2 % provedores.size()];
    endereco += ramos[n / 2 % ramos.size()];
    endereco += '-';
    endereco += lugares[n / 2 / ramos.size() % lugares.size()];
    return endereco += n % 3 == 0 ? ".test" : ".example";
}

std::string usuario_do_dominio(unsigned n, unsigned dominio) {
    std::string endereco = pessoa(n) + '@' + ramos[dominio % ramos.size()] + '-';
    endereco += lugares[dominio / ramos.size() % lugares.size()];
    endereco += std::to_string(dominio / (ramos.size() * lugares.size()) + 1);
    return endereco += dominio % 3 == 0 ? ".test" : ".example";
}

std::string_view dominio(std::string_view endereco) {
    return endereco.substr(endereco.find('@') + 1);
}

std::string servidor(std::string_view dominio) {
    unsigned soma = 0;
    for (const char c : dominio) soma = soma * 31 + static_cast<unsigned char>(c);
    std::string texto = "mx1.";
    texto += dominio;
    texto += " [203.0.113.";
    texto += std::to_string(soma % 254 + 1);
    return texto += ']';
}

}  // namespace gerador
