// The text type of the whole system: one pointer to a shared, counted record, copied on change.
#pragma once

#include <pthread.h>

#include <cstdarg>
#include <cstdint>

// One text, header and characters in a single allocation of the C library's heap.
struct VeltoStringData {
    std::uint32_t size;     // bytes of the whole record, as recorded when it was last allocated
    std::uint32_t len;      // characters held
    std::int32_t refcount;  // strings that share the record; changed under __velto_str_lock only
    std::int32_t factor;    // growth factor in tenths; 0 grows to the exact need
    char c_data[];          // the text and its terminating zero
};

// Guards every change of any refcount in the process.
extern pthread_mutex_t __velto_str_lock;

// Positions count from 1 and a failed search answers 0. Bytes are taken as they are; a null C text
// is an empty one. An empty string may have no record. n characters fit a record while n is not
// greater than its size - 20.
//
// Copies may live in different threads. One object may not be used by two threads at once, and a
// text may not be changed through operator[] while another thread reads a copy of it.
//
// Texts have at most 2^31 - 25 bytes; beyond that, and without memory, std::bad_alloc is thrown.
class VeltoString {
  public:
    VeltoStringData* data = nullptr;  // null: empty; shared with every copy

    VeltoString() = default;
    // The first `n` bytes of `s`; 0 takes all of it, a negative `n` nothing.
    VeltoString(const char* s, int n = 0) { loadPChar(s, n); }
    // One character, also when it is the zero byte.
    VeltoString(char c);
    VeltoString(const VeltoString& outra) { compartilha(outra); }
    ~VeltoString() { deallocate(); }

    // Shares the other's record. A string assigned to itself ends up empty when nobody else holds
    // its record.
    VeltoString& operator=(const VeltoString& outra);
    // Empties the string, then copies `s`, into the same record where there is a growth factor. So
    // with a factor a string assigned its own c_str() ends up empty.
    VeltoString& operator=(const char* s);

    // Replaces the content by a new record of exactly `n` characters of `s`, no growth factor;
    // lengths as for the constructor. A length of 0 leaves no record.
    void loadPChar(const char* s, int n);
    // Lets go of the record, freeing it with its last holder.
    void deallocate();

    // The text, valid until the string changes; "" without a record.
    const char* c_str() const { return data ? data->c_data : ""; }
    int Length() const { return data ? static_cast<int>(data->len) : 0; }
    bool IsEmpty() const { return Length() == 0; }

    // Against "" the same as IsEmpty(); otherwise the texts' bytes up to the first zero.
    bool operator==(const char* s) const;
    bool operator!=(const char* s) const { return !(*this == s); }
    bool operator==(const VeltoString& outra) const;
    bool operator!=(const VeltoString& outra) const { return !(*this == outra); }

    // Position of the first occurrence, 0 when there is none or the string is empty.
    int Pos(const char* needle) const;
    // Position of the last character that is one of `delims`, 0 when there is none.
    int LastDelimiter(const char* delims) const;
    // Leading decimal number as atoi reads it; 0 without one.
    int ToInt() const;

    // Character `i`, unchecked: the string needs a record. A write through it is seen by every
    // string that shares the record.
    char& operator[](int i) const { return data->c_data[i - 1]; }

    // At most `count` characters from `start` on; a count of 0 takes the whole rest, a start beyond
    // the end or below 0 gives an empty string. Start 0 is not refused: its first byte is the one
    // in front of the text, the last of the record's header.
    VeltoString SubString(int start, int count) const;
    // A copy with each byte passed through the C library's tolower: it follows the locale.
    VeltoString LowerCase() const;
    // Shares the record when neither end has a blank. Otherwise blanks go from both ends and the
    // last character that is left goes with them: stored ids were cut so, and must be found again.
    // Blanks are bytes up to 32 as signed numbers, so 0x80 to 0xFF are blanks too.
    VeltoString Trim() const;

    // With a growth factor the record stays, private and empty; without one it is let go.
    void Empty();
    // Without a record of its own the string shares the other's.
    VeltoString& append(const VeltoString& outra);
    // Appends `n` bytes of `s`, below 1 all of it.
    VeltoString& append(const char* s, int n = 0);
    VeltoString& operator+=(const VeltoString& outra) { return append(outra); }
    VeltoString& operator+=(const char* s) { return append(s, 0); }
    // Puts `s` in front of the character at `pos`; below 1 is 1, beyond the end appends.
    void Insert(const char* s, int pos);
    // As Insert, for the first `n` bytes of `s`.
    void realInsert(const char* s, int pos, int n);
    // Cuts or lengthens to `n` characters (negative: 0). New characters are not initialised.
    void SetLength(int n);

    // Replaces the text. Answers the length, or a negative number when the C library cannot format,
    // which leaves the string as it was. A text that outgrows the record takes a new one of the
    // exact size and forgets the growth factor. Arguments may point into the string itself.
    int printf(const char* fmt, ...) __attribute__((format(printf, 2, 3)));
    // Appends. Answers the length appended; errors and arguments as printf.
    int cat_printf(const char* fmt, ...) __attribute__((format(printf, 2, 3)));
    // As cat_printf; uses up `args`.
    int cat_vprintf(const char* fmt, va_list args) __attribute__((format(printf, 2, 0)));

    // Sets the growth factor, on a new empty record with room for `initial` characters where there
    // is none. Every string that shares the record gets the factor.
    void setAllocationPolicy(int initial, int factor);
    // Makes the record this string's own, of the same size, before a change.
    void Unique();
    // Grows the record, which must exist and be private, to hold `needed` characters: to the exact
    // need, or by `factor` tenths of its size where that is more.
    void auxRealloc(std::int64_t needed);

  private:
    void compartilha(const VeltoString& outra);
    bool contem(const char* s) const;
    void reserva(std::int64_t letras);
};
