// load tells whether a file could be read, and no more: its errors are dropped, what it defined stays.
// file: good.js
//| var fromGood = "good";
//| 5
// file: bad syntax.js
//| var fromBad = 1;
//| var = ;
// file: fails.js
//| var fromFails = "ran";
//| missing();
//| fromFails = "went on";
// file: sub/outer.js
//| var outer = load("sub/inner.js") + " " + load("inner.js");
// file: sub/inner.js
//| var inner = (typeof inner == "undefined" ? 0 : inner) + 1;
// file-raw: latin.js "var latin = '\xe9\xff'; var size = latin.length"
// file-raw: name\xe9.js "var named = 1"
// file: empty.js
// file: itself.js
//| var depth = depth + 1;
//| if (depth < 20) { load("itself.js"); }
// args: -load {root}/tests/support/show.js
var depth = 0;
show("good", load("good.js") + " " + fromGood);
show("bad syntax", load("bad syntax.js") + " " + (typeof fromBad));
show("fails", load("fails.js") + " " + fromFails);
show("missing", load("missing.js") + " " + load("") + " " + load());
show("folder", load("sub") + " " + load("."));
show("relative to the working directory", load("sub/outer.js") + " " + outer + " " + inner);
show("every byte passes", load("latin.js") + " " + latin + " " + size);
show("empty", load("empty.js"));
show("String object", load(new String("good.js")));
show("a device", load("/dev/null"));
show("itself", load("itself.js") + " " + depth);
show("past a NUL", load("good.js" + String.fromCharCode(0)));
// expect: good: true good
// expect: bad syntax: true undefined
// expect: fails: true ran
// expect: missing: false false false
// expect: folder: false false
// expect: relative to the working directory: true true false 1
// expect-raw: "every byte passes: true \xe9\xff 2\n"
// expect: empty: true
// expect: String object: true
// expect: a device: true
// expect: itself: true 20
// expect: past a NUL: false
