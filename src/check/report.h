// Report, one finding about a script, as every station of the checker makes it. check_script.h makes all of
// those of one text, check_run.h prints them.
#pragma once

#include <QString>
#include <cstdint>
#include <vector>

enum class Severity { Error, Warning, Note };

struct Report {
    std::int32_t line; // from 1
    Severity severity;
    const char* rule; // static; a note has that of the error in front of it
    QString message;
};

using Reports = std::vector<Report>;
