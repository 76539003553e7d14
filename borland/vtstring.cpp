// The shared text: sizes of records, copy on write, searching and formatting.
#include "borland/vtstring.h"

#include <atomic>
#include <cctype>
#include <climits>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <utility>

pthread_mutex_t __velto_str_lock = PTHREAD_MUTEX_INITIALIZER;

namespace {

// Bytes that an allocation has beyond its characters, and bytes that the capacity test leaves
// unused:
//
//     size   len   refcount   factor   text and NUL   spare
//     |------------- 16 ------------|---- n + 1 ----|-- 7 --|
//
// So a record made for n characters takes n + 24 bytes, and n + 4 characters fit into it.
constexpr int folga = 24;
constexpr int reservado = 20;
static_assert(offsetof(VeltoStringData, c_data) + 1 <= reservado);

// The count is read without the lock before a change, so its accesses are atomic: a string that
// finds itself alone must also see all that the other holders did before they let go.
int contagem(VeltoStringData* d) {
    return std::atomic_ref(d->refcount).load(std::memory_order_acquire);
}

// Answers the new count; only that answer tells who frees the record.
int muda_contagem(VeltoStringData* d, int passo) {
    pthread_mutex_lock(&__velto_str_lock);
    const int nova = d->refcount + passo;
    std::atomic_ref(d->refcount).store(nova, std::memory_order_release);
    pthread_mutex_unlock(&__velto_str_lock);
    return nova;
}

VeltoStringData* aloca(std::size_t bytes) {
    void* p = bytes <= INT_MAX ? std::malloc(bytes) : nullptr;
    if (!p) throw std::bad_alloc();
    return static_cast<VeltoStringData*>(p);
}

// A record for `letras` characters, its text not yet written. Two callers record 20 bytes beyond
// the characters where 24 were allocated: their next growth comes earlier.
VeltoStringData* cria(int letras, std::uint32_t registrado = folga) {
    const auto n = static_cast<std::uint32_t>(letras);
    VeltoStringData* d = aloca(std::size_t{n} + folga);
    d->size = n + registrado;
    d->len = n;
    d->refcount = 1;
    d->factor = 0;
    d->c_data[0] = d->c_data[n] = '\0';
    return d;
}

int capacidade(const VeltoStringData* d) {
    return static_cast<int>(d->size) - reservado;
}

int comprimento(const char* s) {
    const std::size_t n = s ? std::strlen(s) : 0;
    if (n > INT_MAX - folga) throw std::bad_alloc();
    return static_cast<int>(n);
}

bool branco(char c) {
    return static_cast<signed char>(c) <= 32;
}

// A formatted text, apart from any record: the arguments may point into the string that changes.
class Formatado {
  public:
    int tamanho = 0;  // negative when the C library could not format

    __attribute__((format(printf, 2, 0))) Formatado(const char* fmt, va_list args) {
        curto_[0] = '\0';
        if (!fmt) return;
        va_list de_novo;
        va_copy(de_novo, args);
        tamanho = std::vsnprintf(curto_, sizeof curto_, fmt, args);
        if (tamanho >= static_cast<int>(sizeof curto_)) {
            const std::size_t bytes = static_cast<std::size_t>(tamanho) + 1;
            longo_.reset(new (std::nothrow) char[bytes]);
            if (longo_) std::vsnprintf(longo_.get(), bytes, fmt, de_novo);
        }
        va_end(de_novo);
        if (tamanho >= static_cast<int>(sizeof curto_) && !longo_) throw std::bad_alloc();
    }

    void copia(char* destino) const {
        std::memcpy(destino, longo_ ? longo_.get() : curto_, static_cast<std::size_t>(tamanho) + 1);
    }

  private:
    char curto_[512];
    std::unique_ptr<char[]> longo_;
};

}  // namespace

VeltoString::VeltoString(char c) : data(cria(1)) {
    data->c_data[0] = c;
}

void VeltoString::compartilha(const VeltoString& outra) {
    data = outra.data;
    if (data) muda_contagem(data, 1);
}

void VeltoString::deallocate() {
    if (data && muda_contagem(data, -1) == 0) std::free(data);
    data = nullptr;
}

VeltoString& VeltoString::operator=(const VeltoString& outra) {
    if (this == &outra && data && contagem(data) == 1) {
        deallocate();
        return *this;
    }
    // Taken before the old record is let go: when both are one record, its other holders may let go
    // of it meanwhile.
    VeltoString nova(outra);
    std::swap(data, nova.data);
    return *this;
}

VeltoString& VeltoString::operator=(const char* s) {
    if (!data || data->factor == 0) {
        loadPChar(s, 0);
        return *this;
    }
    Empty();
    const int n = comprimento(s);
    if (n == 0) return *this;
    reserva(n);
    std::memmove(data->c_data, s, static_cast<std::size_t>(n) + 1);
    data->len = static_cast<std::uint32_t>(n);
    return *this;
}

void VeltoString::loadPChar(const char* s, int n) {
    if (!s) n = -1;
    if (n == 0) n = comprimento(s);
    VeltoStringData* novo = nullptr;
    if (n > 0) {
        novo = cria(n);
        std::memcpy(novo->c_data, s, static_cast<std::size_t>(n));
    }
    deallocate();  // only now: `s` may be the text that goes
    data = novo;
}

bool VeltoString::operator==(const char* s) const {
    if (!s || *s == '\0') return IsEmpty();
    return data && std::strcmp(data->c_data, s) == 0;
}

bool VeltoString::operator==(const VeltoString& outra) const {
    if (outra.IsEmpty()) return IsEmpty();
    return Length() == outra.Length() &&
           std::memcmp(data->c_data, outra.data->c_data, data->len) == 0;
}

int VeltoString::Pos(const char* needle) const {
    if (IsEmpty()) return 0;
    const char* achado = std::strstr(data->c_data, needle ? needle : "");
    return achado ? static_cast<int>(achado - data->c_data) + 1 : 0;
}

int VeltoString::LastDelimiter(const char* delims) const {
    if (!data || !delims || *delims == '\0') return 0;
    if (delims[1] == '\0') {
        const char* achado = std::strrchr(data->c_data, *delims);
        return achado ? static_cast<int>(achado - data->c_data) + 1 : 0;
    }
    int pos = Length();
    while (pos > 0 && ((*this)[pos] == '\0' || !std::strchr(delims, (*this)[pos]))) --pos;
    return pos;
}

int VeltoString::ToInt() const {
    return std::atoi(c_str());
}

VeltoString VeltoString::SubString(int start, int count) const {
    VeltoString parte;
    if (!data || start < 0 || start > Length()) return parte;
    const int resto = Length() - (start - 1);
    const auto inicio = offsetof(VeltoStringData, c_data) + static_cast<std::size_t>(start) - 1;
    parte.loadPChar(reinterpret_cast<const char*>(data) + inicio, count > resto ? resto : count);
    return parte;
}

VeltoString VeltoString::LowerCase() const {
    VeltoString copia(*this);
    copia.Unique();
    for (int i = 1; i <= copia.Length(); ++i)
        copia[i] = static_cast<char>(std::tolower(static_cast<unsigned char>(copia[i])));
    return copia;
}

VeltoString VeltoString::Trim() const {
    if (IsEmpty()) return VeltoString();
    const char* inicio = data->c_data;
    const char* fim = inicio + data->len - 1;
    if (!branco(*inicio) && !branco(*fim)) return *this;
    while (*inicio != '\0' && branco(*inicio)) ++inicio;
    while (fim > inicio && branco(*fim)) --fim;
    return fim > inicio ? VeltoString(inicio, static_cast<int>(fim - inicio)) : VeltoString();
}

void VeltoString::Empty() {
    if (!data || data->factor == 0) {
        deallocate();
        return;
    }
    Unique();
    data->len = 0;
    data->c_data[0] = '\0';
}

VeltoString& VeltoString::append(const VeltoString& outra) {
    if (!data) return *this = outra;
    if (!outra.IsEmpty()) return append(outra.data->c_data, outra.Length());
    Unique();
    return *this;
}

VeltoString& VeltoString::append(const char* s, int n) {
    if (!s) return *this;
    if (n < 1) n = comprimento(s);
    realInsert(s, INT_MAX, n);
    return *this;
}

void VeltoString::Insert(const char* s, int pos) {
    realInsert(s, pos, comprimento(s));
}

void VeltoString::realInsert(const char* s, int pos, int n) {
    if (!data) {
        if (n > 0) loadPChar(s, n);
        return;
    }
    // A piece of this very text would move with it, so it is copied first; also before Unique(),
    // which may let go of the record that holds the piece.
    const VeltoString pedaco = contem(s) && n > 0 ? VeltoString(s, n) : VeltoString();
    if (pedaco.data) s = pedaco.c_str();
    Unique();
    if (!s || n <= 0) return;
    const int p = pos < 1 ? 0 : pos > Length() ? Length() : pos - 1;
    reserva(std::int64_t{Length()} + n);
    char* lugar = data->c_data + p;
    std::memmove(lugar + n, lugar, static_cast<std::size_t>(Length() - p) + 1);
    std::memcpy(lugar, s, static_cast<std::size_t>(n));
    data->len += static_cast<std::uint32_t>(n);
}

void VeltoString::SetLength(int n) {
    if (n < 0) n = 0;
    if (!data) {
        if (n > 0) data = cria(n, reservado);
        return;
    }
    Unique();
    reserva(n);
    data->c_data[n] = '\0';
    data->len = static_cast<std::uint32_t>(n);
}

int VeltoString::printf(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    const Formatado novo(fmt, args);
    va_end(args);
    if (novo.tamanho < 0) return novo.tamanho;
    if (data && novo.tamanho < capacidade(data)) {
        Unique();
    } else {
        deallocate();
        data = cria(novo.tamanho);
    }
    novo.copia(data->c_data);
    data->len = static_cast<std::uint32_t>(novo.tamanho);
    return novo.tamanho;
}

int VeltoString::cat_printf(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    const int n = cat_vprintf(fmt, args);
    va_end(args);
    return n;
}

int VeltoString::cat_vprintf(const char* fmt, va_list args) {
    const Formatado novo(fmt, args);
    if (novo.tamanho < 0) return novo.tamanho;
    if (!data) {
        data = cria(novo.tamanho, reservado);
        data->len = 0;
    } else {
        Unique();
        if (novo.tamanho >= capacidade(data) - Length())
            auxRealloc(std::int64_t{Length()} + novo.tamanho);
    }
    novo.copia(data->c_data + data->len);
    data->len += static_cast<std::uint32_t>(novo.tamanho);
    return novo.tamanho;
}

void VeltoString::setAllocationPolicy(int initial, int factor) {
    if (!data) {
        data = cria(initial > 0 ? initial : 0);
        data->len = 0;
    }
    data->factor = factor;
}

void VeltoString::Unique() {
    if (!data || contagem(data) == 1) return;
    VeltoStringData* nova = aloca(data->size);
    nova->size = data->size;
    nova->len = data->len;
    nova->refcount = 1;
    nova->factor = data->factor;
    std::memcpy(nova->c_data, data->c_data, data->size - offsetof(VeltoStringData, c_data));
    deallocate();
    data = nova;
}

void VeltoString::auxRealloc(std::int64_t needed) {
    const std::int64_t exato = needed + folga;
    std::int64_t bytes = 0;
    // A factor of 10 doubles the record.
    if (data->factor != 0) bytes = (data->factor + std::int64_t{10}) * ((data->size + 9) / 10);
    if (bytes < exato || bytes > INT_MAX) bytes = exato;
    void* p = bytes > 0 && bytes <= INT_MAX ? std::realloc(data, static_cast<std::size_t>(bytes))
                                            : nullptr;
    if (!p) throw std::bad_alloc();
    data = static_cast<VeltoStringData*>(p);
    data->size = static_cast<std::uint32_t>(bytes);
}

void VeltoString::reserva(std::int64_t letras) {
    if (letras > capacidade(data)) auxRealloc(letras);
}

bool VeltoString::contem(const char* s) const {
    const std::less<const char*> antes;
    return data && s && !antes(s, data->c_data) && antes(s, data->c_data + data->len + 1);
}
