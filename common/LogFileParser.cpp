// The consolidation driver: directories, the recorded point and the day loop.
#include "common/LogFileParser.h"

#include <dirent.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <memory>
#include <string>

#include "borland/XmlRegistry.h"
#include "misc/escopo.h"
#include "misc/ncutils.h"

namespace {

const char* visivel(const char* texto) {
    return texto ? texto : "(null)";
}

ssize_t engole(void*, const char*, std::size_t n) {
    return static_cast<ssize_t>(n);
}

// There is such a directory, but nothing in it can be reached.
bool diretorio_fechado(const char* dir) {
    struct stat st;
    return stat((std::string(dir) + "/.").c_str(), &st) != 0 && errno != ENOENT && errno != ENOTDIR;
}

template <std::size_t N>
bool copia_se_couber(char (&para)[N], const char* de) {
    const std::size_t n = de ? strnlen(de, N) : N;
    if (n >= N) return false;
    std::memcpy(para, de, n + 1);
    return true;
}

}  // namespace

// cppcheck-suppress uninitMemberVar ; leitor_ and lote_ are written before they are read
LogFileParser::LogFileParser()
    : def_dir("LOGS"),
      def_fname(""),
      data_dir(""),
      logs_dir("LOGS"),
      forceMode(false),
      activity_today(false),
      consolid_period(0),
      lastConsolid(0),
      debugOut(nullptr),
      inputFiles(),
      osBuf() {}

LogFileParser::~LogFileParser() {
    esvazia_entradas();
    fecha_entrada();
    if (mudo_) std::fclose(mudo_);
}

void LogFileParser::traco(const char* formato, ...) const {
    if (!debugOut) return;
    va_list args;
    va_start(args, formato);
    std::vfprintf(debugOut, formato, args);
    va_end(args);
}

bool LogFileParser::setDataDir(const char* dir) {
    if (!dir || strnlen(dir, sizeof data_dir) >= sizeof data_dir) {
        traco("setDataDir(%s) ERRO\n", visivel(dir));
        return false;
    }
    if (DIR* d = opendir(dir))
        closedir(d);
    else if (mkdir(dir, 0755) == 0)
        sincroniza_diretorio_de(dir);
    else
        return false;
    copia_se_couber(data_dir, dir);
    traco("setDataDir(%s) OK\n", dir);
    return true;
}

bool LogFileParser::setLogDir(const char* dir) {
    const bool aceito = copia_se_couber(logs_dir, dir);
    if (aceito)
        traco("setLogDir(%s) OK\n", dir);
    else
        traco("setLogDir(%s) ERRO\n", visivel(dir));
    return aceito;
}

VeltoString LogFileParser::getPontaraPath() {
    constexpr int maior_caminho = 127;
    XmlRegistry registro;
    registro.RootKey = "HKEY_LOCAL_MACHINE";
    if (!registro.OpenKey("\\Velto Norim Security\\cfg5", false)) return VeltoString();
    return registro.ReadString("Path").SubString(1, maior_caminho);
}

time_t LogFileParser::getLastConsolid(const char* path) {
    if (!path) return 0;
    char linha[200];
    Stream f = abre_leitura(path);
    // Only a file that is not there means a first run: one that is there and cannot be read may
    // record finished days, which a first run would write over.
    if (!f && errno != ENOENT && errno != ENOTDIR) parada_ = true;
    if (f && std::fgets(linha, sizeof linha, f.get()) && linha[0] == '1') {
        readExtraInfo(f.get());
        const time_t t = strnlen(linha, 2) < 2 ? 0 : convTimeFromLog(linha + 2);
        if (!std::ferror(f.get()) && t != -1) {
            traco("getLastConsolid(%s) OK\n", path);
            return t;
        }
    }
    if (f && std::ferror(f.get())) parada_ = true;
    traco("getLastConsolid(%s) ERRO\n", path);
    return 0;
}

time_t LogFileParser::getNextPeriod(time_t t) {
    // Half a day more than the period lands near the noon of the next day, whatever its length.
    return meia_noite(t + consolid_period + 43200);
}

bool LogFileParser::consolidate(const char* lastConsolidFile) {
    bool limpa_debug = true;
    const AoSair fim([&] {
        fecha_entrada();
        relogio_.termina();
        termina(limpa_debug);
    });
    relogio_.comeca();
    parada_ = false;
    const time_t now = relogio_do_sistema(nullptr);
    lastConsolid = getLastConsolid(lastConsolidFile);
    const bool primeiraVez = lastConsolid == 0;
    if (!parada_ && !forceMode && lastConsolid + consolid_period >= now) {
        traco("relatorio de hoje ja foi gerado.\n\n");
        limpa_debug = false;
        return true;
    }
    if (parada_ || !escolhe_entrada()) return !parada_;
    struct tm agora = {};
    localtime_r(&now, &agora);
    agora.tm_isdst = -1;
    percorre_dias(forceMode ? mktime(&agora) : meia_noite(now));
    if (!parada_ && (!forceMode || primeiraVez)) createLastConsolidFile(lastConsolidFile);
    return !parada_;
}

// Fills inputFiles for this run. False when there is nothing to do.
bool LogFileParser::escolhe_entrada() {
    char vivo[sizeof logs_dir + sizeof def_fname];
    std::snprintf(vivo, sizeof vivo, "%s/%s", logs_dir, def_fname);
    if (lastConsolid != 0) {
        const time_t inicio = getLogInitTime(vivo);
        if (inicio == 0 && diretorio_fechado(logs_dir)) parada_ = true;
        if (parada_) return false;
        if (lastConsolid >= inicio) {
            esvazia_entradas();
            inputFiles[0] = {copia_texto(vivo), inicio};
            inputFiles[1] = {};
            return true;
        }
    }
    const bool ha = getInputFiles(vivo);
    if (parada_) return false;
    if (lastConsolid == 0) {
        if (!ha) return recusa("Nenhum arquivo de log foi encontrado\n");
        lastConsolid = meia_noite(inputFiles[0].iTime);
    }
    return true;
}

void LogFileParser::percorre_dias(time_t ate) {
    fecha_entrada();
    osBuf = {};
    while (lastConsolid < ate) {
        createFiles();
        const bool ha_mais = readInputFiles();
        const bool escrito = dumpFiles();
        if (!escrito || !ha_mais || parada_) break;
        lastConsolid = getNextPeriod(lastConsolid);
    }
}

// Closes the trace. With `limpa_debug` the pointer becomes null; without, it names a stream that
// swallows everything: whoever goes on writing to it must not meet a closed one.
void LogFileParser::termina(bool limpa_debug) {
    if (!debugOut) return;
    if (debugOut != mudo_) std::fclose(debugOut);
    debugOut = nullptr;
    if (limpa_debug) return;
    if (!mudo_) mudo_ = fopencookie(nullptr, "w", {nullptr, engole, nullptr, nullptr});
    debugOut = mudo_;
}
