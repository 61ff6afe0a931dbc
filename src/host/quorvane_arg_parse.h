// The program's own options and what they leave behind for run.cpp.
#pragma once

#include "host/arg_parse.h"

#include <QStringList>

#include <ostream>

class QuorvaneArgParse : public ArgParse {
public:
    static constexpr std::int32_t onlyPass = 1;

    explicit QuorvaneArgParse(ErrorReporter& target);

    // In the order of the command line.
    bool verbose = false;
    QStringList scriptArguments;
    QStringList defines;
    QStringList loads;

protected:
    void nonOption(const char* word) override;
};

// The banner and the usage text.
void printHelp(std::ostream& stream);
