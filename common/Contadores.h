// The counter arrays of users, which share them while they say little.
#pragma once

#include <cstdint>

// A user has eight arrays. Most of them stay empty, and a user who gets one message a day has one
// number in each of two. So all empty arrays are one array of zeros. An array with a single number
// is shared by users for whom the same was counted shortly before, such as the recipients of one
// message. The next number makes the array the user's own.
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

// Releases an array that a user held, whether it was his own or not.
void solta(std::uint32_t* a) noexcept;

}  // namespace contadores
