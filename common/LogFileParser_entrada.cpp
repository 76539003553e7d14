// The consolidation driver: choosing, positioning and reading the logs.
#include <dirent.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>

#include "common/LogFileParser.h"
#include "common/auxiliar.h"
#include "misc/ncutils.h"

struct LogFileParser::Candidato : InputFiles {
    std::string path;
};

namespace {

constexpr int tamanho_da_chave = 10;  // "Www Mmm dd"

}  // namespace

// Errors that say nothing about the log itself: skipping it for one of them would lose its lines.
bool LogFileParser::recurso_em_falta(int erro) {
    if (erro != EMFILE && erro != ENFILE && erro != ENOMEM && erro != EIO) return false;
    parada_ = true;
    return true;
}

time_t LogFileParser::getLogInitTime(const char* path) {
    const Stream f = abre_regular(path);
    if (!f) {
        recurso_em_falta(errno);
        return 0;
    }
    char linha[1024];
    if (std::fgets(linha, sizeof linha, f.get())) return convTimeFromLog(linha);
    if (std::ferror(f.get())) parada_ = true;
    return 0;
}

bool LogFileParser::getInputFiles(const char* path) {
    esvazia_entradas();
    const std::string vivo(path);
    const auto barra = vivo.rfind('/');
    const std::string dir = barra == std::string::npos ? "." : vivo.substr(0, barra);
    const std::string base = barra == std::string::npos ? vivo : vivo.substr(barra + 1);
    DIR* aberto = opendir(dir.c_str());
    if (!aberto) {
        if (errno != ENOENT && errno != ENOTDIR) parada_ = true;
        return false;
    }
    const std::unique_ptr<DIR, int (*)(DIR*)> d(aberto, closedir);
    std::vector<Candidato> achados;
    errno = 0;
    while (const dirent* e = readdir(d.get())) {
        if (igual_sem_caixa(e->d_name, base.c_str(), base.size())) {
            Candidato c{{}, dir + "/" + e->d_name};
            c.iTime = getLogInitTime(c.path.c_str());
            if (c.iTime > lastConsolid) achados.push_back(std::move(c));
        }
        errno = 0;
    }
    if (errno != 0) parada_ = true;
    guarda(achados);
    return inputFiles[0].file != nullptr;
}

// Moves the oldest of the logs found into inputFiles, equal times by name.
void LogFileParser::guarda(std::vector<Candidato>& achados) {
    std::sort(achados.begin(), achados.end(), [](const Candidato& a, const Candidato& b) {
        const int ordem =
            cmp_func(static_cast<const InputFiles*>(&a), static_cast<const InputFiles*>(&b));
        return ordem ? ordem < 0 : a.path < b.path;
    });
    if (achados.size() >= max_entradas) achados.resize(max_entradas - 1);
    std::size_t n = 0;
    for (const Candidato& c : achados) inputFiles[n++] = {copia_texto(c.path.c_str()), c.iTime};
}

void LogFileParser::esvazia_entradas() {
    for (InputFiles& f : inputFiles) {
        delete[] f.file;
        f = {};
    }
}

void LogFileParser::fecha_entrada() {
    if (osBuf.fin) std::fclose(osBuf.fin);
    osBuf.fin = nullptr;
    no_lote_ = tomadas_ = 0;
}

void LogFileParser::antecipa(const LeitorLinhas::Trecho*, std::size_t) {}

int LogFileParser::posicao_no_lote() const {
    if (tomadas_ == 0) return -1;
    const LeitorLinhas::Trecho& mostrada = lote_[tomadas_ - 1];
    const bool a_mesma = osBuf.lbuf[mostrada.tamanho] == '\0' &&
                         std::memcmp(osBuf.lbuf, mostrada.inicio, mostrada.tamanho) == 0;
    return a_mesma ? static_cast<int>(tomadas_) - 1 : -1;
}

// Brings the next line into osBuf.lbuf. False at the end of the file.
bool LogFileParser::le_linha() {
    if (tomadas_ == no_lote_) {
        no_lote_ = leitor_.varias(lote_, maior_lote, maior_linha_);
        tomadas_ = 0;
        if (leitor_.erro()) parada_ = true;
        if (no_lote_ == 0) {
            osBuf.lbuf[0] = '\0';
            return false;
        }
        antecipa(lote_, no_lote_);
    }
    const LeitorLinhas::Trecho& linha = lote_[tomadas_++];
    std::memcpy(osBuf.lbuf, linha.inicio, linha.tamanho);
    osBuf.lbuf[linha.tamanho] = '\0';
    return true;
}

// Opens the next input and reads its first line. False when it gives none; then it is closed again.
bool LogFileParser::abre_entrada() {
    const char* path = inputFiles[osBuf.fileIdx++].file;
    traco("Abrindo entrada %s\n", path);
    osBuf.fin = abre_regular(path).release();
    if (!osBuf.fin) {
        recurso_em_falta(errno);
        return recusa("Erro abrindo arquivo de entrada!\n");
    }
    leitor_.comeca(fileno(osBuf.fin), bytes_por_leitura);
    if (le_linha()) return true;
    fecha_entrada();
    traco("Arquivo de entrada vazio\n");
    traco("Fechando arquivo %s\n", path);
    return false;
}

// Goes on to the first line, from the current one, that is not earlier than lastConsolid. False,
// and the file closed, when it has none.
bool LogFileParser::posiciona() {
    do {
        const time_t t = convTimeFromLog(osBuf.lbuf);
        if (t != 0 && t >= lastConsolid) {
            traco("Arquivo posicionado em %s\n", osBuf.lbuf);
            return true;
        }
    } while (le_linha());
    fecha_entrada();
    traco("Fechando arquivo %s\n", inputFiles[osBuf.fileIdx - 1].file);
    return false;
}

bool LogFileParser::readInputFiles() {
    char dia[32];
    ctime_r(&lastConsolid, dia);
    dia[tamanho_da_chave] = '\0';
    traco("Consolidando dia %s\n", dia);
    bool hasPositioned = false;
    while (!parada_) {
        if (!osBuf.fin) {
            if (!inputFiles[osBuf.fileIdx].file) {
                traco("Fim da lista de arquivos.\n");
                return false;
            }
            if (!abre_entrada()) continue;
        }
        // Once a day: a log that is rotated goes on in the next one.
        if (!hasPositioned && !posiciona()) continue;
        hasPositioned = true;
        activity_today = false;
        do {
            if (std::memcmp(osBuf.lbuf, dia, tamanho_da_chave) != 0) {
                if (!activity_today) traco("N\xE3o houve atividade em %s\n", dia);
                return true;
            }
            parser();
            activity_today = true;
        } while (le_linha());
        fecha_entrada();
    }
    return false;
}
