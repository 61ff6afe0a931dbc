// The first file that fails ends the run: the second and the text don't run.
// args: -load bad.js
// file: bad.js
//| WScript.Echo('before');
//| var f = 1;
//| f();
//| WScript.Echo('after');
// expect-raw: "before"
// expect error: line 3: not a function object
WScript.Echo('second file');
