// The counter arrays of users, which share them while they say little.
#pragma once

#include <cstdint>

// A user has eight arrays. Most of them stay empty, and those of the many who get one message a day
// hold one number. So all that hold zeros are one array, and one that holds a single number is
// shared by the users of whom the same was counted shortly before: the recipients of one message.
// The next number makes an array the user's own.
//
// Arrays have 24 counters, and belong to the thread that made them.
namespace contadores {

constexpr std::uint32_t periodos = 24;

// The zeros of all threads. They cannot be written to.
std::uint32_t* zeros();

// Adds `n` at `periodo` (below 24) for a user whose array `a` is not his own. Answers the array
// that he holds now instead; `proprio` becomes true when it is his own, to be written to as he
// likes. Throws std::bad_alloc, with nothing changed.
std::uint32_t* soma(std::uint32_t* a, std::uint32_t periodo, std::uint32_t n, bool& proprio);

// The user holds this array no longer, whether it was his own or not.
void solta(std::uint32_t* a) noexcept;

}  // namespace contadores
