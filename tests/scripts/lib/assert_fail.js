// args: -load {root}/lib/assert.js
function deep(n) {
    if (n == 0) {
        Assert.fail("no such image");
    }
    deep(n - 1);
    WScript.Echo("goes on\n");
}
WScript.Echo("starts\n");
deep(3);
// expect: starts
// expect: error: no such image
// stderr-contains: : not a function object
// exit: 1
