// What the fuzz targets share: their entry, and the input cut into parts.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// What a target claims of an input, by gtest's EXPECT_*: a failed one ends the process.
void confere(std::string_view entrada);

// The first `n` parts of an input, which 0x1E separates; "" for those that it lacks. The last part
// goes on to the end.
std::vector<std::string> partes(std::string_view entrada, std::size_t n);
