// Who writes to whom in generated logs: every address is made of a number, so that nobody is kept.
#pragma once

#include <array>
#include <string>
#include <string_view>

namespace gerador {

// The domains of the relay's own users.
extern const std::array<const char*, 3> dominios_locais;

// Address of local user `n`, ISO-8859-1: the first few are busy role accounts, now and then one is
// logged without a domain. Different numbers give different addresses.
std::string usuario_local(unsigned n);

// Address of an outside correspondent, ISO-8859-1; half of them share a handful of providers.
std::string usuario_remoto(unsigned n);

// Address of outside name `n` in domain number `dominio`. Different numbers give different
// addresses.
std::string usuario_do_dominio(unsigned n, unsigned dominio);

// What follows the "@" of `endereco`; the whole of it when there is none.
std::string_view dominio(std::string_view endereco);

// The mail server of a domain, as "mx1.<dominio> [203.0.113.7]".
std::string servidor(std::string_view dominio);

}  // namespace gerador
