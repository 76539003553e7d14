// VeltoString: random operations on a few strings that share records, against std::string.
#include <cctype>
#include <cstdlib>
#include <cstring>

#include "borland/vtstring.h"
#include "fuzz/apoio.h"

namespace {

constexpr unsigned quantas = 4;

// A string and what it must hold.
struct Par {
    VeltoString v;
    std::string m;
};

std::string ate_nul(const std::string& s) {
    return s.c_str();
}

// The text of a constructor: 0 bytes wanted takes all of it, a negative number nothing.
std::string trecho(const std::string& s, int n) {
    return n == 0 ? ate_nul(s) : n < 0 ? "" : s.substr(0, static_cast<std::size_t>(n));
}

bool branco(char c) {
    return static_cast<signed char>(c) <= 32;
}

std::string aparada(const std::string& s) {
    if (s.empty() || (!branco(s.front()) && !branco(s.back()))) return s;
    std::size_t inicio = 0, fim = s.size() - 1;
    while (inicio < s.size() && s[inicio] != '\0' && branco(s[inicio])) ++inicio;
    while (fim > inicio && branco(s[fim])) --fim;
    // The last character that is left goes with the blanks.
    return fim > inicio ? s.substr(inicio, fim - inicio) : "";
}

std::string parte(const std::string& s, int start, int count) {
    // Start 0 begins at the header's last byte, which is not part of the text.
    if (start < 1 || start > static_cast<int>(s.size())) return "";
    const std::string resto = s.substr(static_cast<std::size_t>(start) - 1);
    return trecho(resto, std::min(count, static_cast<int>(resto.size())));
}

int ultimo_de(const std::string& s, const std::string& delims) {
    if (delims.empty()) return 0;
    const std::string onde = delims.size() == 1 ? ate_nul(s) : s;
    const std::size_t p = onde.find_last_of(delims);
    return p == std::string::npos ? 0 : static_cast<int>(p) + 1;
}

int posicao(const std::string& s, const std::string& agulha) {
    const std::size_t p = s.empty() ? std::string::npos : ate_nul(s).find(agulha);
    return p == std::string::npos ? 0 : static_cast<int>(p) + 1;
}

class Operacoes {
  public:
    Operacoes(const std::uint8_t* dados, std::size_t n) : e_(dados, n) {}

    void roda() {
        while (!e_.acabou()) {
            const unsigned op = e_.byte();
            Par& a = pares_[e_.byte() % quantas];
            Par& b = pares_[e_.byte() % quantas];
            if (op % 32 < 12)
                troca(op % 32, a, b);
            else if (op % 32 < 22)
                muda(op % 32, a, b);
            else
                pergunta(a, b);
            confere();
        }
    }

  private:
    int numero() { return static_cast<int>(e_.byte()) - 8; }
    std::string texto() {
        const unsigned n = e_.byte() % 80;
        std::string t;
        for (unsigned i = 0; i < n && !e_.acabou(); ++i) t += static_cast<char>(e_.byte());
        return t;
    }

    // Operations that give `a` another text.
    void troca(unsigned op, Par& a, Par& b) {
        const std::string t = texto();
        const int n = std::min(numero(), static_cast<int>(t.size()));
        switch (op) {
            case 0:
                // Assigned to itself it keeps its text only if another one shares the record.
                if (&a == &b && a.v.data && a.v.data->refcount == 1) a.m.clear();
                a.v = b.v;
                a.m = b.m;
                break;
            case 1:
                a.v = t.c_str();
                a.m = ate_nul(t);
                break;
            case 2:
                a.v.loadPChar(t.c_str(), n);
                a.m = trecho(t, n);
                break;
            case 3: {
                const VeltoString copia(a.v);
                a.v = VeltoString(t.c_str(), n);
                a.m = trecho(t, n);
                break;
            }
            case 4:
                a.v = VeltoString(static_cast<char>(n));
                a.m.assign(1, static_cast<char>(n));
                break;
            case 5: {
                const int m = numero();
                if (n == 0) break;
                a.m = parte(b.m, n, m);
                a.v = b.v.SubString(n, m);
                break;
            }
            case 6:
                a.m = b.m;
                for (char& c : a.m)
                    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
                a.v = b.v.LowerCase();
                break;
            case 7:
                a.m = aparada(b.m);
                a.v = b.v.Trim();
                break;
            case 8:
                a.v.Empty();
                a.m.clear();
                break;
            case 9:
                a.m = ate_nul(b.m) + "-" + std::to_string(n) + "-" + ate_nul(t);
                a.v.printf("%s-%d-%s", b.v.c_str(), n, t.c_str());
                break;
            case 10:
                a.v.deallocate();
                a.m.clear();
                break;
            default:
                a.v.setAllocationPolicy(n, static_cast<int>(e_.byte() % 30));
        }
    }

    // Operations that change the text of `a`.
    void muda(unsigned op, Par& a, Par& b) {
        const std::string t = texto();
        const int n = numero();
        const std::size_t onde = std::min(static_cast<std::size_t>(std::max(n, 1)) - 1, a.m.size());
        switch (op) {
            case 12:
                a.m += std::string(b.m);
                a.v.append(b.v);
                break;
            case 13:
                a.m += ate_nul(t);
                a.v += t.c_str();
                break;
            case 14: {
                const int k = std::min(n, static_cast<int>(t.size()));
                a.m += trecho(t, std::max(k, 0));
                a.v.append(t.c_str(), k);
                break;
            }
            case 15:
                a.m.insert(onde, ate_nul(t));
                a.v.Insert(t.c_str(), n);
                break;
            case 16: {
                // A piece of its own text, or of one that shares its record.
                const std::string dela = ate_nul(b.m);
                const std::size_t de = dela.empty() ? 0 : e_.byte() % dela.size();
                a.m.insert(onde, dela.substr(de));
                a.v.Insert(b.v.c_str() + de, n);
                break;
            }
            case 17: {
                const std::string soma = ate_nul(b.m) + "%" + ate_nul(a.m);
                exige(a.v.cat_printf("%s%%%s", b.v.c_str(), a.v.c_str()) ==
                          static_cast<int>(soma.size()),
                      "cat_printf answers what it appended");
                a.m += soma;
                break;
            }
            case 18: {
                const std::size_t antes = a.m.size();
                a.v.SetLength(n);
                a.m.resize(n < 0 ? 0 : static_cast<std::size_t>(n), 'x');
                for (std::size_t i = antes; i < a.m.size(); ++i) a.v[static_cast<int>(i) + 1] = 'x';
                break;
            }
            case 19: {
                // The one change that others who share the record see too.
                if (a.m.empty()) break;
                const int i = 1 + static_cast<int>(e_.byte() % a.m.size());
                a.v[i] = static_cast<char>(n);
                for (Par& p : pares_)
                    if (p.v.data == a.v.data)
                        p.m[static_cast<std::size_t>(i) - 1] = static_cast<char>(n);
                break;
            }
            case 20: {
                const int k = std::min(n, static_cast<int>(t.size()));
                a.m.insert(onde, trecho(t, k < 1 ? -1 : k));
                a.v.realInsert(t.c_str(), n, k);
                break;
            }
            default:
                a.v.Unique();
        }
        // Doubling must not go on for ever.
        if (a.m.size() > 4000) {
            a.v.SetLength(100);
            a.m.resize(100);
        }
    }

    void pergunta(const Par& a, const Par& b) {
        const std::string t = ate_nul(texto());
        exige((a.v == b.v) == (a.m == b.m), "equal texts, equal strings");
        exige((a.v == t.c_str()) == (t.empty() ? a.m.empty() : ate_nul(a.m) == t),
              "equal to a C text");
        exige(a.v.Pos(t.c_str()) == posicao(a.m, t), "Pos");
        exige(a.v.LastDelimiter(t.c_str()) == ultimo_de(a.m, t), "LastDelimiter");
        exige(a.v.ToInt() == std::atoi(a.m.c_str()), "ToInt");
    }

    void confere() {
        for (const Par& p : pares_) {
            exige(p.v.Length() == static_cast<int>(p.m.size()), "the length");
            exige(p.v.IsEmpty() == p.m.empty(), "IsEmpty");
            exige(std::memcmp(p.v.c_str(), p.m.c_str(), p.m.size() + 1) == 0, "the text");
            if (!p.v.data) continue;
            int donos = 0;
            for (const Par& q : pares_) donos += q.v.data == p.v.data;
            exige(p.v.data->refcount == donos, "the count of holders");
        }
    }

    Entrada e_;
    Par pares_[quantas];
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* dados, std::size_t n) {
    Operacoes(dados, n).roda();
    return 0;
}
