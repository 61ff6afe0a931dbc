// The one hash of texts, keyed anew in each process: chosen names must not meet in one place of a table. What
// it gives shows nowhere, neither in an order nor in an output.
#pragma once

#include <QStringView>
#include <cstdint>

// For two different texts of n code units and a random key equal with a probability of at most n / 2^59: the
// polynomial of the text's pieces of 48 bits, modulo 2^61 - 1, at a random place. The high bits are the good
// ones. Qt's keyed qHash() costs twice as many instructions for a short name.
std::uint64_t hashOf(QStringView text);
