// The kinds of work on a tree of day files, as pages ask for them.
#pragma once

#include <string>
#include <vector>

#include "common/LogMailFileParser.h"
#include "common/logresult.h"

namespace falhas {

// A report and the walk through its rows.
struct Relato {
    const char* nome;
    int (*pede)(LogMailFileParser& p, LogResult& r, const std::string& id);
};
extern const std::vector<Relato> relatos;

// Runs the report over all days of the tree into `r` and walks the rows: a line of text each. `id`
// names a message of the tree.
std::string relata(const Relato& relato, LogMailFileParser& p, LogResult& r, const std::string& id);

// Sets a parser to the day files in `dados`, with the domains of the generated traffic. False when
// it refuses.
bool prepara(LogMailFileParser& p, const std::string& dados);

// Writes a key with a few values, made of `valor`, of the registry in `pasta`; and reads it.
void escreve_registro(const std::string& pasta, const char* valor);
std::string le_registro(const std::string& pasta);

}  // namespace falhas
