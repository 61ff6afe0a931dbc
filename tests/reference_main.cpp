// The program on the machine's loop over the defined bytes: what the fused form is compared with.
#include "host/run.h"
#include "runtime/context.h"

int main(int argc, char** argv) {
    ESContext::defaultForm = ESExecutionForm::Bytes;
    return runQuorvane(argc, argv);
}
