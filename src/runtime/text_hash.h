// The one hash of texts, keyed anew in each process: chosen names must not meet in one place of a table. What
// it gives shows nowhere, neither in an order nor in an output.
#pragma once

#include <QStringView>
#include <cstdint>

// Two different texts of n code units meet in 32 bits of it with a probability of about 2^-32, whatever they
// are: the polynomial of the text's pieces of 48 bits, modulo 2^61 - 1, at a random place (n / 2^59 at most),
// folded by a random factor.
std::uint64_t hashOf(QStringView text);
