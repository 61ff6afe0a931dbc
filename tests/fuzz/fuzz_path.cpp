// cleanPath: never longer, clean once cleaned, and nothing but what its rules take away.
#include "fuzz_target.h"
#include "hostobjects/file_helpers.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString path = latin1({data, size});
    const QString cleaned = cleanPath(path);
    expect(cleaned.size() <= path.size(), "a cleaned path is no longer than the path");
    expect(!cleaned.contains(QLatin1String("//")), "a cleaned path has no empty steps");
    expect(cleanPath(cleaned) == cleaned, "a cleaned path stays as it is");
    expect(cleaned.startsWith(u'/') == path.startsWith(u'/') || cleaned.isEmpty(),
           "an absolute path stays absolute, a relative one relative");
    return 0;
}
