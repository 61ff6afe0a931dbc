// What running scripts do most: properties, calls, texts, arrays. Each row is the body of a loop; what is
// read goes to x, since the machine leaves out what has no effect.
#include "script.h"

#include <benchmark/benchmark.h>

#include <memory>

namespace {

struct Row {
    const char* name;
    const char* before; // once for each call of the function that holds the loop
    const char* body;
};

constexpr Row rows[] = {
    {"empty_loop", "", ""},
    {"property/get_own", "var o = {a: 1, b: 2, c: 3};", "x = o.c;"},
    {"property/get_prototype", "function P() {} P.prototype.c = 3; var o = new P();", "x = o.c;"},
    {"property/get_missing", "var o = {a: 1, b: 2, c: 3};", "x = o.d;"},
    {"property/get_of_64", "var o = {}; for (var k = 0; k < 64; k++) o['k' + k] = k;", "x = o.k40;"},
    {"property/get_by_text", "var o = {a: 1, b: 2, c: 3}, k = 'c';", "x = o[k];"},
    {"property/put_own", "var o = {a: 1, b: 2, c: 3};", "o.c = i;"},
    {"property/put_over_prototype", "function P() {} P.prototype.c = 3; var o = new P();", "o.c = i;"},
    {"property/put_new", "var o;", "o = {}; o.a = i;"},
    {"global/get", "", "x = NaN;"},
    {"call/script", "function f(a) { return a; }", "x = f(i);"},
    {"call/method", "var o = {f: function (a) { return a; }};", "x = o.f(i);"},
    {"call/closure", "var k = 1; function f() { k = k + 1; }", "f();"},
    {"call/new", "function P(a) { this.a = a; }", "x = new P(i);"},
    {"call/native", "var abs = Math.abs;", "x = abs(i);"},
    {"call/native_method", "", "x = Math.abs(i);"},
    {"call/native_on_text", "var s = 'text';", "x = s.charCodeAt(1);"},
    {"text/append_text", "var s = '';", "s += 'abc';"},
    {"text/append_number", "var s = '';", "s += i;"},
    {"text/append_and_read", "var s = '';", "s += 'abc'; s.charCodeAt(i);"},
    {"text/compare", "var s = 'some text ' + n, t = 'some text ' + n;", "x = s == t;"},
    {"array/get", "var a = [1, 2, 3, 4, 5, 6, 7, 8];", "x = a[i & 7];"},
    {"array/put", "var a = [1, 2, 3, 4, 5, 6, 7, 8];", "a[i & 7] = i;"},
    {"array/append", "var a = [];", "a[i] = i;"},
    {"array/push_pop", "var a = [];", "a.push(i); a.pop();"},
};

// The loop runs inside one call, so that what a call from outside costs doesn't count. A context frees
// nothing before its end: it is renewed before it can fill the memory.
void runRow(benchmark::State& state, const Row& row) {
    constexpr int loops = 10'000;
    constexpr int callsOfContext = 50;
    const std::string text = std::string("var made = function (n) { var x; ") + row.before +
                             " for (var i = 0; i < n; i++) { " + row.body + " } return i; }; made";
    std::unique_ptr<Script> script;
    int calls = 0;
    for ([[maybe_unused]] const auto iteration : state) {
        if (calls++ % callsOfContext == 0) {
            state.PauseTiming();
            script = std::make_unique<Script>(text);
            script->run(1); // makes the fused form
            state.ResumeTiming();
        }
        if (script->run(loops).number != loops) {
            state.SkipWithError("the loop did not run to its end");
        }
    }
    state.SetItemsProcessed(state.iterations() * loops);
}

const bool isRegistered = [] {
    for (const Row& row : rows) {
        benchmark::RegisterBenchmark(row.name, [&row](benchmark::State& state) { runRow(state, row); });
    }
    return true;
}();

} // namespace
