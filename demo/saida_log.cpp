// The live log file and its rotation.
#include "demo/saida_log.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace gerador {

namespace {

constexpr const char* nome_vivo = "MAIL_DISPATCHER.LOG";

[[noreturn]] void falha(int erro, const std::string& path) {
    throw std::system_error(erro, std::generic_category(), path);
}

}  // namespace

SaidaLog::SaidaLog(const std::string& diretorio, std::uint64_t rotacao)
    : vivo_(diretorio + '/' + nome_vivo), rotacao_(rotacao) {
    std::filesystem::create_directories(diretorio);
    for (const auto& entrada : std::filesystem::directory_iterator(diretorio))
        if (entrada.path().filename().string().starts_with(nome_vivo))
            falha(EEXIST, entrada.path().string());
}

void SaidaLog::abre(std::time_t t) {
    stream_.reset(std::fopen(vivo_.c_str(), "wbe"));
    if (!stream_) falha(errno, vivo_);
    std::setvbuf(stream_.get(), nullptr, _IOFBF, 1 << 20);
    inicio_ = t;
    no_arquivo_ = 0;
    ++arquivos_;
}

void SaidaLog::corta() {
    conclui();
    stream_.reset();
    struct tm tm;
    localtime_r(&inicio_, &tm);
    char sufixo[32];
    std::size_t n = std::strftime(sufixo, sizeof sufixo, ".%Y%m%d", &tm);
    if (rotacao_ != rotacao_diaria)
        std::snprintf(sufixo + n, sizeof sufixo - n, "-%04u", arquivos_);
    const std::string peca = vivo_ + sufixo;
    if (std::rename(vivo_.c_str(), peca.c_str()) != 0) falha(errno, peca);
}

void SaidaLog::linha(std::time_t t, std::string_view carimbo, std::string_view texto,
                     std::string_view fim) {
    if (stream_ && rotacao_ != rotacao_diaria && no_arquivo_ >= rotacao_ && t != inicio_) corta();
    if (!stream_) abre(t);
    std::fwrite(carimbo.data(), 1, carimbo.size(), stream_.get());
    std::fwrite(": ", 1, 2, stream_.get());
    std::fwrite(texto.data(), 1, texto.size(), stream_.get());
    bytes_ += carimbo.size() + 2 + texto.size();
    crua(fim);
}

void SaidaLog::crua(std::string_view bytes) {
    std::fwrite(bytes.data(), 1, bytes.size(), stream_.get());
    bytes_ += bytes.size();
    if (bytes.ends_with('\n')) {
        ++linhas_;
        ++no_arquivo_;
    }
}

void SaidaLog::novo_dia() {
    if (stream_ && rotacao_ == rotacao_diaria) corta();
}

void SaidaLog::conclui() {
    if (stream_ && (std::fflush(stream_.get()) != 0 || std::ferror(stream_.get())))
        falha(errno, vivo_);
}

}  // namespace gerador
