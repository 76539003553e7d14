// The days of a range, and the reports that read statistics files.
#include <cstring>
#include <unordered_map>

#include "common/LogMailFileParser_relatos.h"

namespace {

constexpr std::size_t maior_linha = 2047;
constexpr unsigned linhas_por_dia = 24;

// Copies the next line, cut at its first NUL, into `linha`. False at the end of the file.
bool le(LeitorLinhas& leitor, char (&linha)[maior_linha + 1]) {
    const char* lida;
    const std::size_t n = leitor.proxima(&lida, maior_linha);
    std::memcpy(linha, lida, n);
    linha[n] = '\0';
    return n != 0;
}

MsgsData* nova_contagem(DList<MsgsData>* lista, time_t timestamp) {
    MsgsData* d = new MsgsData{};
    d->timestamp = timestamp;
    lista->putLast(d);
    return d;
}

}  // namespace

// One reading of the statistics files of a range; each way of reading takes one open file.
struct Relatos::LeituraEstatistica {
    Relatos& r;
    LeitorLinhas leitor{};
    char linha[maior_linha + 1] = {};
    std::string nome{};
    std::unordered_map<std::string, MsgsDayUser*> usuarios{};

    void totais(time_t dia, DList<MsgsData>* m_day) {
        diario::Totais t;
        if (le(leitor, linha) && diario::le_totais(linha, t))
            diario::mostra(t, *nova_contagem(m_day, dia));
    }

    void indexa(DList<MsgsDayUser>* pedidos) {
        for (MsgsDayUser* u = pedidos->first(); u; u = u->next) usuarios.emplace(u->username, u);
    }

    // A blank line has an empty name, which is nobody's.
    MsgsDayUser* pedido() {
        if (nome.empty()) return nullptr;
        auto u = usuarios.find(nome);
        if (u == usuarios.end() && r.corta_dominio_local(nome)) u = usuarios.find(nome);
        return u == usuarios.end() ? nullptr : u->second;
    }

    // Every line is read as a user's; other lines name nobody who was asked for.
    void por_usuario(time_t dia, DList<MsgsDayUser>* pedidos) {
        while (le(leitor, linha)) {
            const char* numeros = diario::le_nome(linha, nome);
            MsgsDayUser* u = pedido();
            if (!u) continue;
            MsgsData* d = u->has_data ? u->m_day.last() : nullptr;
            if (!d) d = nova_contagem(&u->m_day, dia);
            u->has_data = true;
            diario::soma(diario::le_contadores(numeros), *d);
        }
        for (MsgsDayUser* u = pedidos->first(); u; u = u->next) u->has_data = false;
    }

    bool e_do_usuario(const char* user) {
        if (nome.empty()) return false;
        return nome == user || (r.corta_dominio_local(nome) && nome == user);
    }

    void por_hora(DList<MsgsData>* m_hour, const char* user) {
        MsgsData* horas[linhas_por_dia];
        for (MsgsData*& h : horas) h = nova_contagem(m_hour, 0);
        unsigned colchetes = 0;
        bool procura = false;
        while (le(leitor, linha)) {
            if (diario::e_periodo(linha)) {
                procura = colchetes < linhas_por_dia;
                if (procura) horas[colchetes++]->timestamp = diario::le_periodo(linha);
                continue;
            }
            if (!procura) continue;
            const char* numeros = diario::le_nome(linha, nome);
            if (!e_do_usuario(user)) continue;
            procura = false;
            diario::soma(diario::le_contadores(numeros), *horas[colchetes - 1]);
        }
    }
};

// Cuts the address to the part before "@" when what follows is a local domain. Otherwise false, and
// nothing is changed.
bool Relatos::corta_dominio_local(std::string& endereco) {
    const auto arroba = endereco.find('@');
    if (arroba == std::string::npos ||
        !procurar_dominio(&p_.domains, endereco.c_str() + arroba + 1))
        return false;
    endereco.resize(arroba);
    return true;
}

void LogMailFileParser::getFiles(InputFiles* files, const char* prefix, time_t start, time_t end) {
    if (start >= end) return;
    for (time_t t = start;; t += 86400) {
        char path[diario::maior_caminho];
        int mes, ano;
        diario::nome_para_leitor(path, data_dir, prefix, t, mes, ano);
        (files++)->file = copia_texto(path);
        if (end - t < 86400) return;
    }
}

bool LogMailFileParser::get_msgs_per_day(time_t start, time_t end, DList<MsgsData>* m_day,
                                         DList<MsgsDayUser>* msgs_day_user) {
    if (start > end)
        return recusa("LogMailFileParser::get_msgs_per_day : Data inicial > data final\r\n");
    return relatos_->le_estatisticas({data_dir, diario::estatistica, start, end}, m_day,
                                     msgs_day_user, nullptr, nullptr);
}

bool LogMailFileParser::parse_consolid_files(InputFiles* files, time_t start, time_t end,
                                             DList<MsgsData>* m_day,
                                             DList<MsgsDayUser>* msgs_day_user,
                                             DList<MsgsData>* m_hour, char* user) {
    if (!files || start > end)
        return recusa("LogMailFileParser::parse_consolid_files : Params. inv\xE1lidos.\r\n");
    return relatos_->le_estatisticas({files, start, end}, m_day, msgs_day_user, m_hour, user);
}

bool Relatos::le_estatisticas(diario::Dias dias, DList<MsgsData>* m_day,
                              DList<MsgsDayUser>* msgs_day_user, DList<MsgsData>* m_hour,
                              const char* user) {
    LeituraEstatistica leitura{*this};
    if (msgs_day_user) leitura.indexa(msgs_day_user);
    // For totals only the first line is read.
    const std::size_t bloco = msgs_day_user || m_hour ? LeitorLinhas::bloco : 4096;
    while (dias.proximo()) {
        const Stream f = dias.abre();
        if (!f) {
            p_.traco("LogMailFileParser::parse_consolid_files : Erro ao abrir %s\r\n", dias.path());
            continue;
        }
        leitura.leitor.comeca(fileno(f.get()), bloco);
        if (msgs_day_user)
            leitura.por_usuario(dias.dia(), msgs_day_user);
        else if (m_hour)
            leitura.por_hora(m_hour, user);
        else
            leitura.totais(dias.dia(), m_day);
    }
    return true;
}
