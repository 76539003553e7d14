// Statistics files read in the three ways, by the days of a range and by an array of files, against
// a naive reading; the array may have gaps and ends early.
#include <cstring>
#include <memory>
#include <sstream>

#include "common/LogMailFileParser.h"
#include "fuzz/apoio.h"
#include "fuzz/referencia.h"

namespace {

constexpr time_t primeiro_dia = 1237075200;  // 2009-03-15 00:00:00 UTC
constexpr unsigned num_dias = 3;
constexpr time_t ultimo = primeiro_dia + (num_dias - 1) * 86400;

const Arvore& arvore() {
    static const Arvore a;
    return a;
}

std::string do_dia(unsigned dia) {
    return "DAT/rels_03-09/mail_stat_" + std::to_string(15 + dia) + ".txt";
}

using Numeros = std::vector<std::uint32_t>;

// The decimal numbers that a text begins with, at most `n`.
Numeros numeros(const std::string& texto, std::size_t n) {
    Numeros lidos;
    const char* p = texto.c_str();
    while (lidos.size() < n) {
        while (std::strchr(" \t\n\v\f\r", *p) && *p) ++p;
        const char* fim = p + (*p == '-' || *p == '+');
        if (*fim < '0' || *fim > '9') break;
        while (*fim >= '0' && *fim <= '9') ++fim;
        lidos.push_back(static_cast<std::uint32_t>(std::strtoll(p, nullptr, 10)));
        p = fim;
    }
    return lidos;
}

// A line's first word, and what stands behind it.
std::pair<std::string, std::string> nome_e_resto(const std::string& linha) {
    const std::size_t de = linha.find_first_not_of(" \t\n\v\f\r");
    if (de == std::string::npos) return {};
    const std::size_t ate = std::min(linha.find_first_of(" \t\n\v\f\r", de), linha.size());
    return {linha.substr(de, ate - de), linha.substr(ate)};
}

// The name itself, or without a local domain.
bool e_ele(const std::string& nome, const std::string& quem) {
    if (nome == quem) return true;
    const std::size_t arroba = nome.find('@');
    if (arroba == std::string::npos) return false;
    const std::string dominio = nome.substr(arroba + 1);
    return (dominio == "local.test" || dominio == "b") && nome.substr(0, arroba) == quem;
}

struct Linha {
    time_t t = 0;
    Numeros n = Numeros(8, 0);  // in the order of the statistics file's first line

    // A user's line: sent, bytes, received, bytes, virus, spam, errors, blocked. Spam and errors
    // change places.
    void soma(const std::string& resto) {
        Numeros v = numeros(resto, 8);
        v.resize(8);
        const std::uint32_t troca[] = {v[6], v[4], v[5], v[7], v[2], v[3], v[0], v[1]};
        for (std::size_t i = 0; i < 8; ++i) n[i] += troca[i];
    }
};

std::string texto(const std::vector<Linha>& linhas) {
    std::string t;
    for (const Linha& l : linhas) {
        t += std::to_string(l.t);
        for (std::uint32_t v : l.n) t += " " + std::to_string(v);
        t += "\n";
    }
    return t;
}

std::string texto(const DList<MsgsData>& lista) {
    std::vector<Linha> linhas;
    for (const MsgsData* d = lista.first(); d; d = d->next)
        linhas.push_back({d->timestamp,
                          {d->spam, d->virus, d->error, d->att_blocked, d->msgs_int, d->bytes_int,
                           d->msgs_ext, d->bytes_ext}});
    return texto(linhas);
}

// The lines of a file as C texts.
referencia::Palavras linhas_de(unsigned dia) {
    referencia::Palavras l = referencia::linhas(arvore().le(do_dia(dia)), 2047);
    for (std::string& s : l) s = s.c_str();
    return l;
}

std::string totais_devagar() {
    std::vector<Linha> dias;
    for (unsigned d = 0; d < num_dias; ++d) {
        const referencia::Palavras l = linhas_de(d);
        const Numeros v = l.empty() ? Numeros() : numeros(l[0], 10);
        if (v.size() == 10)
            dias.push_back(
                {primeiro_dia + static_cast<time_t>(d) * 86400, Numeros(v.begin() + 2, v.end())});
    }
    return texto(dias);
}

std::string usuario_devagar(const std::string& quem) {
    std::vector<Linha> dias;
    for (unsigned d = 0; d < num_dias; ++d) {
        Linha dele{primeiro_dia + static_cast<time_t>(d) * 86400};
        bool achado = false;
        for (const std::string& l : linhas_de(d)) {
            const auto [nome, resto] = nome_e_resto(l);
            if (nome.empty() || !e_ele(nome, quem)) continue;
            achado = true;
            dele.soma(resto);
        }
        if (achado) dias.push_back(dele);
    }
    return texto(dias);
}

std::string horas_devagar(const std::string& quem) {
    std::vector<Linha> horas;
    for (unsigned d = 0; d < num_dias; ++d) {
        Linha dia[24];
        std::size_t atual = 0;  // brackets seen
        bool achado = true;
        for (const std::string& l : linhas_de(d)) {
            if (l.starts_with('[')) {
                achado = atual >= 24;
                if (!achado) dia[atual++].t = std::strtoll(l.c_str() + 1, nullptr, 10);
                continue;
            }
            const auto [nome, resto] = nome_e_resto(l);
            if (achado || nome.empty() || !e_ele(nome, quem)) continue;
            achado = true;
            dia[atual - 1].soma(resto);
        }
        horas.insert(horas.end(), dia, dia + 24);
    }
    return texto(horas);
}

// One way of reading: `le` fills the lists of a parser and is called twice, with an array of files
// and without.
enum class Modo { totais, usuarios, horas };

std::string le(Modo modo, bool por_arquivos, const std::string& quem) {
    LogMailFileParser p;
    std::strcpy(p.data_dir, arvore().path("DAT").c_str());
    char dominios[] = "local.test;b";
    p.add_domain(dominios);
    DList<MsgsData> linhas;
    DList<MsgsDayUser> usuarios;
    auto* u = new MsgsDayUser;
    std::strncpy(u->username, quem.c_str(), 199);
    usuarios.putFirst(u);
    DList<MsgsDayUser>* pedidos = modo == Modo::usuarios ? &usuarios : nullptr;
    if (por_arquivos) {
        InputFiles files[num_dias + 2] = {};
        p.getFiles(files, "mail_stat_", primeiro_dia, ultimo);
        std::string copia = quem;
        p.parse_consolid_files(files, primeiro_dia, ultimo,
                               modo == Modo::totais ? &linhas : nullptr, pedidos,
                               modo == Modo::horas ? &linhas : nullptr, copia.data());
        for (InputFiles& f : files) delete[] f.file;
    } else if (modo == Modo::horas) {
        p.get_msgs_per_hour_per_user(primeiro_dia, ultimo, quem.c_str(), &linhas);
    } else {
        p.get_msgs_per_day(primeiro_dia, ultimo, &linhas, pedidos);
    }
    const std::string t = texto(modo == Modo::usuarios ? u->m_day : linhas);
    apaga_todos(u->m_day);
    apaga_todos(usuarios);
    apaga_todos(linhas);
    return t;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* dados, std::size_t n) {
    Entrada e(dados, n);
    const std::string quem = std::string(e.parte().c_str()).substr(0, 199);
    for (unsigned d = 0; d < num_dias; ++d) arvore().grava(do_dia(d), e.parte());
    for (const bool por_arquivos : {false, true}) {
        exige(le(Modo::totais, por_arquivos, quem) == totais_devagar(), "totals by day");
        exige(le(Modo::usuarios, por_arquivos, quem) == usuario_devagar(quem), "a user by day");
        exige(le(Modo::horas, por_arquivos, quem) == horas_devagar(quem), "a user by hour");
    }
    return 0;
}
