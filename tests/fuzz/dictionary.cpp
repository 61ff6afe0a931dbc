// Prints a dictionary for fuzz_script: the tokens of the language, and every name that can be reached from
// the global object.
#include "compiler/token.h"
#include "fuzz_target.h"
#include "runtime/atom.h"
#include "script_run.h"

#include <set>
#include <string>
#include <vector>

namespace {

class NameCollector {
public:
    void visit(const ESObject* object) {
        if (object == nullptr || !seen_.insert(object).second) {
            return;
        }
        visit(object->prototype);
        for (std::uint32_t i = 0; i < object->properties.count(); ++i) {
            const ESProperty& property = object->properties.at(i);
            if (property.atom == nullptr) {
                continue;
            }
            names.insert(property.atom->toString().toStdString());
            if (const ESValue v = property.value(); v.isObject()) {
                visit(v.object);
            }
        }
    }

    std::set<std::string> names;

private:
    std::set<const ESObject*> seen_;
};

} // namespace

int main() {
    std::string output;
    HostObjects hostObjects(output);
    ESContext ctx;
    ctx.initContext();
    hostObjects.addTo(ctx);
    NameCollector collector;
    collector.visit(ctx.globalObject);
    for (const ESTokenRow& row : tokenTable) {
        if (!QLatin1String(row.text).contains(u' ')) {
            collector.names.insert(row.text);
        }
    }
    for (const std::string& name : collector.names) {
        std::printf("\"%s\"\n", name.c_str());
    }
}
