// Logs and day files of any bytes, and what must hold of them: the fast ways of reading tell what
// the slow ones tell. Most lines are of a usual form, for which there are fast ways; the same line
// can be written in a form that only the slow ones take.
#pragma once

#include <string>

// A log in which no line is of the usual form, and every line says what it said: behind the first
// word, which is skipped, stand two blanks.
std::string log_incomum(std::string log);

// The same of a compact file: a zero stands in front of each time.
std::string compacto_incomum(const std::string& compacto);

// Consolidates a log, whose first line is made to be of 15 March 2009, after a last-consolidation
// file with these records, and expects the same files of lines read by batches, one by one, and of
// an unusual form.
void confere_log(const std::string& registros, const std::string& log);

// Expects the same reports over the compact files and the statistics files of 15 and 16 March 2009
// from a walk over the days, from lists of files, and from lines of an unusual form.
void confere_dias(const std::string (&compactos)[2], const std::string (&estatisticas)[2]);
