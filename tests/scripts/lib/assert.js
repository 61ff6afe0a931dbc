// args: -load {root}/lib/assert.js
// Under eval() a failure ends the text alone, which lets one run show all of them.
function attempt(text) {
    WScript.Echo(text + "\n    ");
    eval(text + "; WScript.Echo('passes\\n')");
}
var array = [1, [2, "x"]];
var texts = ["Assert.that(1, 'no')", "Assert.that('a' == 'a', 'no')", "Assert.that(0, 'zero')", "Assert.that(0 / 0, 'NaN')",
             "Assert.that('', 'empty')", "Assert.that(undefined, 'undefined')", "Assert.that([], 'no')",
             "Assert.equal(1, 1)", "Assert.equal(1, '1')", "Assert.equal(0 / 0, 0 / 0)", "Assert.equal(null, undefined, 'what')",
             "Assert.equal(undefined, undefined)", "Assert.equal(null, null)", "Assert.equal(true, 1)",
             "Assert.equal([1, [2, 'x']], array)", "Assert.equal([1, [2, 'y']], array, 'arrays')",
             "Assert.equal([1], [1, 2])", "Assert.equal([], [])", "Assert.equal(new Object(), array)", "Assert.equal(array, array)",
             "Assert.equal(null, [null])",
             "Assert.defined(array, 'array') == array", "Assert.defined(missing, 'missing')", "Assert.defined('', 'empty')"];
for (var i = 0; i < texts.length; i++) {
    attempt(texts[i]);
}
// expect: Assert.that(1, 'no')
// expect:     passes
// expect: Assert.that('a' == 'a', 'no')
// expect:     passes
// expect: Assert.that(0, 'zero')
// expect:     error: zero
// expect: Assert.that(0 / 0, 'NaN')
// expect:     error: NaN
// expect: Assert.that('', 'empty')
// expect:     error: empty
// expect: Assert.that(undefined, 'undefined')
// expect:     error: undefined
// expect: Assert.that([], 'no')
// expect:     passes
// expect: Assert.equal(1, 1)
// expect:     passes
// expect: Assert.equal(1, '1')
// expect:     error: expected "1", got 1
// expect: Assert.equal(0 / 0, 0 / 0)
// expect:     passes
// expect: Assert.equal(null, undefined, 'what')
// expect:     error: what: expected undefined, got null
// expect: Assert.equal(undefined, undefined)
// expect:     passes
// expect: Assert.equal(null, null)
// expect:     passes
// expect: Assert.equal(true, 1)
// expect:     error: expected 1, got true
// expect: Assert.equal([1, [2, 'x']], array)
// expect:     passes
// expect: Assert.equal([1, [2, 'y']], array, 'arrays')
// expect:     error: arrays: expected [1, [2, "x"]], got [1, [2, "y"]]
// expect: Assert.equal([1], [1, 2])
// expect:     error: expected [1, 2], got [1]
// expect: Assert.equal([], [])
// expect:     passes
// expect: Assert.equal(new Object(), array)
// expect:     error: expected [1, [2, "x"]], got [object Object]
// expect: Assert.equal(array, array)
// expect:     passes
// expect: Assert.equal(null, [null])
// expect:     error: expected [null], got null
// expect: Assert.defined(array, 'array') == array
// expect:     passes
// expect: Assert.defined(missing, 'missing')
// expect:     error: needs -define missing=...
// expect: Assert.defined('', 'empty')
// expect:     passes
